-- Quads: turned, mirrored, in perspective and with evenly divided sides.
on main
  source = image(2, 2, 32)
  source.setPixel(0, 0, rgb(1, 0, 0))
  source.setPixel(1, 0, rgb(2, 0, 0))
  source.setPixel(0, 1, rgb(3, 0, 0))
  source.setPixel(1, 1, rgb(4, 0, 0))
  show source, [point(0, 0), point(4, 0), point(4, 4), point(0, 4)], [:]
  show source, [point(4, 0), point(0, 0), point(0, 4), point(4, 4)], [:]
  show source, [point(1, 0), point(3, 0), point(3, 4), point(1, 4)], [#useFastQuads: TRUE]
  -- The far half of a trapezoid is shorter in perspective, and as long as the near one without.
  tall = [point(2, 0), point(6, 0), point(8, 8), point(0, 8)]
  put column(source, tall, FALSE)
  put column(source, tall, TRUE)
end

on show source, quad, options
  target = image(4, 4, 32)
  target.copyPixels(source, quad, source.rect, options)
  rows = []
  repeat with y = 0 to 3
    row = ""
    repeat with x = 0 to 3
      level = target.getPixel(x, y).red
      if level = 255 then put "." after row
      else put level after row
    end repeat
    rows.add(row)
  end repeat
  put rows
end

on column source, quad, fast
  target = image(8, 8, 32)
  target.copyPixels(source, quad, source.rect, [#useFastQuads: fast])
  levels = []
  repeat with y = 0 to 7
    levels.add(target.getPixel(3, y).red)
  end repeat
  return levels
end
