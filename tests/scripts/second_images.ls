-- Images that go in beside the loaded one, images that come out, and colour lists.
on main
  x = new(xtra "KRLImageXtra")
  x.krlImageCreateLookupTables(#mt)
  back = image(2, 1, 32)
  back.fill(back.rect, rgb(0, 0, 255))
  front = image(2, 1, 32)
  front.fill(front.rect, rgb(255, 0, 0))
  x.krlImageLoad(back)
  put x.krlImageComposite(front, #normal, #background_alpha_no)
  put back.getPixel(0, 0), front.getPixel(0, 0)
  put x.krlImageHSVtoRGB(120.0, 1.0, 1)
  put x.krlImageRGBtoHSV(rgb(0, 255, 0))
  x.krlImageQuit()
  x.krlImageDestroyLookupTables()
end
