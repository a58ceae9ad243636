-- Brightens a picture: krlimage run brighten.ls IN OUT

on main names
  picture = image(names[1])
  grade = new(xtra "KRLImageXtra")
  grade.krlImageCreateLookupTables(#mt)
  grade.krlImageLoad(picture)
  put grade.krlImageBrightness(40, #RGB)
  grade.krlImageQuit()
  grade.krlImageDestroyLookupTables()
  picture.save(names[2])
end
