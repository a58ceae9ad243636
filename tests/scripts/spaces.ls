-- Vectors, transforms, dates, byte arrays and what maps between rects.
on main
  v = vector(1, 2, 3)
  put v[2], v = vector(1, 2, 3), v <> vector(1, 2, 4)
  v[2] = 5
  w = v.duplicate()
  w.x = 9
  put v, w
  transforms()
  dates()
  bytes()
  rects()
  put propList(#a, 1, "b", [2]), propList()
  put the shiftDown, the mouseDown, the mouseUp, _key.keyCode, the key
  put "first" into field "note"
  put the text of field "note", the name of field "note", field "note"
  m = _movie.newMember(#text)
  put m.type, m.text
end

on transforms
  t = transform()
  put t
  t.translate(10, 20, 30)
  put t.position, t.rotation, t.scale
  put t * vector(1, 1, 1)
  t.rotate(0, 0, 90)
  put t.position, t.rotation
  t.identity()
  t.preRotate(vector(90, 0, 0))
  t.preTranslate(0, 0, 5)
  put t * vector(0, 1, 0)
  t.scale(2, 2, 2)
  put t.scale, t.xAxis
  put t * t.inverse() = transform()
  i = t.duplicate()
  i.invert()
  i.multiply(t)
  put i
  i.position = vector(1, 2, 3)
  i.rotation = vector(10, 20, 30)
  i.scale = vector(2, 3, 4)
  put i.position, i.rotation, i.scale
  i.preScale(0.5, 1, 1)
  put i.scale
  i.preMultiply(t)
  put transform().interpolate(i, 0)
  m = transform()
  m.translate(10, 0, 0)
  put transform().interpolate(m, 25).position
end

on dates
  d = date(2024, 2, 27)
  put d + 3, d - 60, d - date(2023, 2, 27), d = date("20240227"), d < date(2024, 2, 28)
  e = d.duplicate()
  e.day = 40
  put e + 0, d
end

on bytes
  b = bytearray("abc")
  put b[1], b.length, b = bytearray("abc"), b = bytearray("abd")
  c = b.duplicate()
  c[2] = 255
  put c, b
end

on rects
  put map(point(1, 1), rect(0, 0, 2, 2), rect(10, 10, 30, 20))
  put map(rect(0, 1, 2, 2), rect(0, 0, 2, 2), rect(0, 0, 20, 40))
end
