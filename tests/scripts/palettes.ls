-- Images of up to 8 bits: their palettes, indexes and nearest colours.
on main
  -- White is the first colour of every palette, black the last.
  repeat with depth in [1, 2, 4, 8]
    img = image(2, 1, depth)
    put depth, img.getPixel(0, 0), img.getPixel(0, 0, #integer), img.paletteRef
    img.setPixel(1, 0, rgb(0, 0, 0))
    put img.getPixel(1, 0), img.getPixel(1, 0, #integer), img.getPixel(1, 0) = rgb(0, 0, 0)
  end repeat

  img = image(4, 1, 8)
  img.setPixel(0, 0, color(#paletteIndex, 35))
  img.setPixel(1, 0, 35)
  img.setPixel(2, 0, rgb(250, 3, 4))
  img.setPixel(3, 0, rgb(0, 0, 240))
  put rowOf(img)
  put img.getPixel(0, 0).red, img.getPixel(0, 0).green, img.getPixel(2, 0).blue
  -- The pixels keep their indexes in another palette.
  img.paletteRef = #grayscale
  put img.paletteRef, rowOf(img), img.getPixel(0, 0).red
  img.fill(img.rect, color(#paletteIndex, 100))
  put rowOf(img), img.getPixel(0, 0).green
  put image(1, 1, 8, #grayscale).paletteRef, image(1, 1, 8, 0, #grayscale).paletteRef, image(1, 1, 8, 0).paletteRef

  -- Copies take the nearest colours.
  sixteen = image(4, 1, 4)
  full = image(4, 1, 32)
  full.fill(rect(0, 0, 1, 1), rgb(250, 100, 0))
  full.fill(rect(1, 0, 2, 1), rgb(10, 0, 210))
  full.fill(rect(2, 0, 3, 1), rgb(130, 126, 128))
  sixteen.copyPixels(full, sixteen.rect, full.rect)
  put rowOf(sixteen)
  full.copyPixels(sixteen, full.rect, sixteen.rect)
  put full.getPixel(0, 0), full.getPixel(2, 0)
  put rowOf(sixteen.duplicate()), rowOf(sixteen.crop(rect(1, 0, 3, 1)))

  -- 16 bits keep five of each colour.
  high = image(1, 1, 16)
  high.setPixel(0, 0, rgb(90, 91, 255))
  put high.getPixel(0, 0)

  -- A mask shows by its indexes: black all, white nothing.
  mask = image(2, 1, 8, #grayscale)
  mask.setPixel(0, 0, rgb(0, 0, 0))
  opaque = image(2, 1, 32)
  put opaque.setAlpha(mask), rowOf(opaque.extractAlpha()), opaque.extractAlpha().paletteRef
  red = image(2, 1, 32)
  red.fill(red.rect, rgb(255, 0, 0))
  white = image(2, 1, 32)
  white.copyPixels(red, white.rect, red.rect, [#maskImage: mask])
  put white.getPixel(0, 0), white.getPixel(1, 0)

  -- A cube of six levels; black is the last colour, whichever others are black.
  web = image(4, 1, 8, #web216)
  web.setPixel(0, 0, rgb(0, 0, 0))
  web.setPixel(1, 0, rgb(250, 3, 4))
  web.setPixel(2, 0, 1)
  web.setPixel(3, 0, 216)
  put web.paletteRef, rowOf(web), web.getPixel(1, 0) = rgb(255, 0, 0), web.getPixel(2, 0) = rgb(255, 255, 204)
  web.fill(web.rect, 35)
  put rowOf(web), web.getPixel(0, 0) = rgb(255, 0, 0)
  web.draw(web.rect, [#shapeType: #rect, #color: 0])
  put rowOf(web)
  img.paletteRef = #rainbow
end

on rowOf img
  indexes = []
  repeat with x = 0 to img.width - 1
    indexes.add(img.getPixel(x, 0, #integer))
  end repeat
  return indexes
end
