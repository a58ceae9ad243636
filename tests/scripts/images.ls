-- Images without the plug-in: pixels, parts, copies, alpha, saving.
on main
  img = image(3, 2, 32)
  put img.width, img.height, img.rect, img.depth, img.useAlpha, the width of img
  put img.getPixel(0, 0), img.getPixel(point(2, 1)), img.getPixel(3, 0), img.getPixel(0, 0, #integer)
  put img.setPixel(1, 0, rgb(10, 20, 30)), img.setPixel(9, 9, rgb(0, 0, 0)), img.getPixel(1, 0)
  img.setPixel(2, 1, 16909060)
  put img.getPixel(2, 1), img.getPixel(2, 1, #integer)
  other = img.duplicate()
  other.setPixel(1, 0, rgb(1, 1, 1))
  put img.getPixel(1, 0), other.getPixel(1, 0)
  other.fill(0, 0, 2, 1, rgb(200, 0, 0))
  other.fill(rect(1, 1, 9, 9), [#shapeType: #rect, #color: rgb(0, 0, 200)])
  put rowOf(other, 0), rowOf(other, 1)
  part = other.crop(rect(1, 0, 4, 2))
  put part.rect, rowOf(part, 0)

  target = image(4, 1, 32)
  source = image(2, 1, 32)
  source.setPixel(0, 0, rgb(0, 0, 0))
  source.setPixel(1, 0, rgb(100, 100, 100))
  target.copyPixels(source, target.rect, source.rect)
  put rowOf(target, 0)
  target.fill(target.rect, rgb(255, 255, 255))
  target.copyPixels(source, rect(1, 0, 3, 1), source.rect, [#blend: 50])
  put rowOf(target, 0)
  target.copyPixels(source, rect(-1, 0, 1, 1), source.rect, [#blendLevel: 255, #ink: 0])
  put rowOf(target, 0)

  mask = target.extractAlpha()
  put mask.depth, mask.getPixel(0, 0, #integer)
  mask.setPixel(0, 0, 51)
  put target.setAlpha(mask), target.setAlpha(source), target.setAlpha(source.extractAlpha())
  put bitAnd(target.getPixel(0, 0, #integer), -16777216) = 51 * 16777216
  source.fill(source.rect, rgb(0, 0, 0))
  target.copyPixels(target, target.rect, target.rect)
  white = image(1, 1, 32)
  white.copyPixels(target, white.rect, rect(0, 0, 1, 1))
  put white.getPixel(0, 0)
  target.useAlpha = FALSE
  white.copyPixels(target, white.rect, rect(0, 0, 1, 1))
  put white.getPixel(0, 0)
  -- A mask of one pixel lies where its offset says; beyond it nothing is copied.
  dark = image(3, 1, 32)
  dark.fill(dark.rect, rgb(0, 0, 0))
  row = image(3, 1, 32)
  dot = image(1, 1, 8)
  dot.setPixel(0, 0, rgb(0, 0, 0))
  row.copyPixels(dark, row.rect, dark.rect, [#maskImage: dot, #maskOffset: point(1, 0)])
  put rowOf(row, 0)
  other.save("other.pam")
  put image("other.pam").getPixel(0, 0)
end

on rowOf img, y
  levels = []
  repeat with x = 0 to img.width - 1
    c = img.getPixel(x, y)
    levels.add([c.red, c.green, c.blue])
  end repeat
  return levels
end
