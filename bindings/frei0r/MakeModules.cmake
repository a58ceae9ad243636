# Makes one module of each method that LIST names, in folder OUT: a source of its own below SCRATCH, which holds
# the name, linked by the command LINK with what every module has. Modules of methods that are gone go.
file(STRINGS ${LIST} methods)
if(NOT methods)
  message(FATAL_ERROR "${LIST} names no method")
endif()
file(REMOVE_RECURSE ${OUT})
file(MAKE_DIRECTORY ${OUT})
foreach(method IN LISTS methods)
  set(source ${SCRATCH}/${method}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "extern const char krl_frei0r_method[] = \"${method}\";\n")
  execute_process(COMMAND ${LINK} ${source} ${WITH} -o ${OUT}/krl_${method}.so COMMAND_ERROR_IS_FATAL ANY)
endforeach()
