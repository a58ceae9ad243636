-- The plug-in in both call forms, its results and its failures.
on main
  x = new(xtra "KRLImageXtra")
  put x.krlImageLoad(image(2, 2, 32))
  put x.krlImageCreateLookupTables(#other)
  put x.krlImageCreateLookupTables(#ST)
  put x.krlImageBrightness(10, #RGB)
  img = ramp()
  put krlImageLoad(x, img)
  put krlImageBrightness(x, 40, #rgb), row(img)
  put x.krlImageBrightness(-20, #Alpha), row(img)
  put x.krlImageBrightness("x", #RGB)
  put x.krlImageBrightness(1.5, #RGB)
  put x.krlImageBrightness(10, #Blue)
  put x.krlImageBrightness(10)
  put x.KRLIMAGEBRIGHTNESS(300, #RGB).error, row(img)
  krlImageBrightness x, -300, #RGB
  put row(img)
  result = x.krlImageQuit()
  if result.error = 0 then put "let go"
  put x.krlImageLoad(5)
  put x.krlImageDestroyLookupTables()
  put x.krlImageStartTimer(), ilk(x.krlImageStartTimer())
  y = xtra("krlimagextra").new()
  put y.krlImageQuit()
end

on ramp
  img = image(4, 1, 32)
  repeat with i = 0 to 3
    img.setPixel(i, 0, rgb(i * 80, 0, 255))
  end repeat
  return img
end

on row img
  reds = []
  repeat with i = 0 to img.width - 1
    reds.add(img.getPixel(i, 0).red)
  end repeat
  return reds
end
