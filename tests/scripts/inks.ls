-- Every ink, colours, quads, masks, shapes.
on main
  inks = [#copy, #transparent, #reverse, #ghost, #notCopy, #notTransparent, #notReverse, #notGhost, #matte, #mask, \
    #blend, #addPin, #add, #subtractPin, #backgroundTransparent, #lightest, #subtract, #darkest, #lighten, #darken]
  source = image(4, 1, 32)
  source.setPixel(0, 0, rgb(0, 0, 0))
  source.setPixel(1, 0, rgb(200, 100, 50))
  source.setPixel(3, 0, rgb(10, 20, 30))
  repeat with ink in inks
    target = image(4, 1, 32)
    target.fill(target.rect, rgb(100, 150, 200))
    target.copyPixels(source, target.rect, source.rect, [#ink: ink])
    put ink, target.getPixel(0, 0), target.getPixel(1, 0), target.getPixel(2, 0), target.getPixel(3, 0)
  end repeat
  target = image(4, 1, 32)
  target.copyPixels(source, target.rect, source.rect, [#color: rgb(255, 0, 0), #bgColor: rgb(0, 0, 255)])
  put target.getPixel(0, 0), target.getPixel(1, 0), target.getPixel(2, 0)
  target.copyPixels(source, target.rect, source.rect, [#ink: 36, #bgColor: rgb(10, 20, 30), #dither: 1, #useFastQuads: 0])
  put target.getPixel(3, 0), target.getPixel(2, 0)

  corner = image(2, 2, 32)
  corner.setPixel(0, 0, rgb(1, 0, 0))
  corner.setPixel(1, 0, rgb(2, 0, 0))
  corner.setPixel(0, 1, rgb(3, 0, 0))
  corner.setPixel(1, 1, rgb(4, 0, 0))
  turned = image(4, 4, 32)
  turned.copyPixels(corner, [point(4, 0), point(4, 4), point(0, 4), point(0, 0)], corner.rect)
  repeat with y = 0 to 3
    row = []
    repeat with x = 0 to 3
      row.add(turned.getPixel(x, y).red)
    end repeat
    put row
  end repeat
  show shape([#shapeType: #oval, #color: rgb(0, 0, 0)])
  show shape([#shapeType: #roundRect, #color: rgb(0, 0, 0), #lineSize: 1, #bgColor: rgb(255, 0, 0)])
  lined = image(8, 8, 32)
  lined.draw(0, 0, 7, 7, rgb(0, 0, 0))
  lined.draw(rect(1, 1, 7, 7), [#shapeType: #rect, #lineSize: 1, #color: rgb(255, 0, 0)])
  lined.fill([rect(0, 6, 1, 8), rect(2, 7, 3, 8)], rgb(0, 0, 0))
  lined.fill(point(6, 0), point(8, 1), rgb(0, 0, 0))
  lined.floodFill(point(3, 2), rgb(255, 0, 0))
  show lined
  trimmed = image(6, 6, 32)
  trimmed.setPixel(2, 3, rgb(0, 0, 0))
  trimmed.setPixel(4, 4, rgb(0, 0, 0))
  put trimmed.trimWhiteSpace().rect
  trimmed.useAlpha = 0
  matte = trimmed.createMatte()
  put matte.depth, matte.getPixel(2, 3, #integer), matte.getPixel(0, 0, #integer)
  mask = trimmed.createMask()
  put mask.getPixel(2, 3, #integer), mask.getPixel(0, 0, #integer)
  fresh = image(2, 1, 32)
  put fresh.setAlpha(128), fresh.extractAlpha().getPixel(0, 0, #integer), fresh.getPixel(1, 0, #integer)
  fresh.copyPixels(fresh, fresh.rect, fresh.rect, [#blendLvel: 5])
end

on shape options
  made = image(8, 6, 32)
  made.fill(made.rect, options)
  return made
end

on show picture
  repeat with y = 0 to picture.height - 1
    row = ""
    repeat with x = 0 to picture.width - 1
      c = picture.getPixel(x, y)
      if c = rgb(255, 255, 255) then put "." after row
      else if c = rgb(0, 0, 0) then put "#" after row
      else put "r" after row
    end repeat
    put row
  end repeat
end
