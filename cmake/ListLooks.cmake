# Writes the source file OUT, which holds every look in FOLDER by the name of its file.
file(GLOB looks ${FOLDER}/*.krl)
list(SORT looks)
set(text "// Written by the build from the folder of looks.\n#include \"look/Look.h\"\n\nnamespace krl {\n
const std::vector<ShippedLook>& shippedLooks() {\n    static const std::vector<ShippedLook> looks = {\n")
foreach(look IN LISTS looks)
  get_filename_component(name ${look} NAME_WE)
  file(READ ${look} content)
  string(APPEND text "        {\"${name}\", R\"look(${content})look\"},\n")
endforeach()
file(WRITE ${OUT} "${text}    };\n    return looks;\n}\n\n}  // namespace krl\n")
