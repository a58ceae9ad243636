-- Images of fewer bits than the plug-in works on.
on main
  x = new(xtra "KRLImageXtra")
  x.krlImageCreateLookupTables(#st)
  back = image(5, 2, 32)
  repeat with depth in [1, 2, 4, 8, 16, 24]
    other = image(5, 2, depth)
    other.setPixel(0, 0, rgb(102, 102, 102))
    put other.depth, other.getPixel(0, 0), other.setAlpha(5)
    put x.krlImageLoad(other)
    put x.krlImageInvert(#RGB)
    x.krlImageLoad(back)
    put x.krlImageComposite(other, #normal, #background_alpha_no)
    put x.krlImageReinterlace(back, other)
    put x.krlImageBroadcastCombine([other, other, other, other])
    put x.krlImageDefinePattern(other, #normal, 255)
    put other.getPixel(0, 0), back.getPixel(0, 0)
    x.krlImageQuit()
  end repeat
  put x.krlImageLoad(back), x.krlImageInvert(#RGB), back.getPixel(0, 0)
  x.krlImageQuit()
  -- A row of four bytes is one pixel to the plug-in, whatever the depth.
  narrow = image(1, 1, 8)
  put x.krlImageLoad(narrow), x.krlImageInvert(#RGB)
  x.krlImageQuit()
  put narrow.getPixel(0, 0)
  x.krlImageDestroyLookupTables()
  put image(1, 1, 5)
end
