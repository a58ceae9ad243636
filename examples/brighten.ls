-- Lightens a picture: krlimage run examples/brighten.ls IN OUT

on main args
  picture = image(args[1])
  grader = new(xtra "KRLImageXtra")
  grader.krlImageCreateLookupTables(#mt)
  grader.krlImageLoad(picture)
  put grader.krlImageBrightness(40, #RGB)
  grader.krlImageQuit()
  grader.krlImageDestroyLookupTables()
  picture.save(args[2])
end
