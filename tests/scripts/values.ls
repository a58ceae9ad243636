-- Values as scripts in circulation use them: keys, texts of numbers, colours, dates, vectors, bytes.
on main
  put ["A": 1, "a": 2]["a"], ["A": 1]["a"], [#k: "v"]["k"], ["name": 1].name, #a = "a"
  local = 20
  put value("local + 2"), value("12 PM"), value("[1, 2], 4]"), value("("), value("")
  do "local = local + 1"
  put local
  do "put" && QUOTE & "done" & QUOTE & RETURN & "local = 5"
  put local, never
  put bitOr(1.9, 2.2), bitAnd(7.9, 3), bitXor(5, 1.5)
  put 1e20, 1.5e-7, 123456.75, 0.0, 1e15
  text = "one two  three four"
  delete word 2 of text
  put text
  delete the last word of text
  put text
  put color(1, 2, 3), rgb(1, 2, 3), color(#rgb, 4, 5, 6), color(#paletteIndex, 5), color(1, 2, 3) = rgb(1, 2, 3)
  put color(#paletteIndex, 0).red, color(#paletteIndex, 255).blue, color(#paletteIndex, 215).red, rgb(1, 2, 3).colorType
  put sqrt("4.0"), sqrt(16), pi(), integer(pi() * 100)
  put "a,b,c".count(#item), "a b c".getProp(#word, 2), "a b c".getProp(#word, 2, 3), count("a b", #word)
  put [#a: [1, 2, 3]].getProp(#a, 2), [#a: [1, 2, 3]].count(#a), [#a: 1].getaProp(#b, "default")
  put vector(1, 2, 3) + vector(1, 1, 1), vector(1, 2, 3) * 2, vector(1, 2, 3) * vector(4, 5, 6), -vector(1, 0, 2)
  v = vector(3, 4, 0)
  put v.magnitude, v.getNormalized(), v.x, v.cross(vector(0, 0, 1)), vector(1, 0, 0).angleBetween(vector(0, 1, 0)), v.distanceTo(vector(0, 0, 0))
  v.x = 1.5
  put v, ilk(v)
  d = date(2024, 2, 29)
  put d, d.year, d.month, d.day, d.seconds, date("20240131").month, ilk(the systemDate)
  b = bytearray(2, 7)
  b.writeInt16(513)
  b.position = 1
  put b.length, b.readInt8(), b.readInt8(), ilk(b), b
  put the number of xtras, the colorDepth, _movie.frame, _system.colorDepth, ilk(_player), voidP(_global.gUnset)
  _global.gSet = 3
  put value("gSet"), _movie.runMode, the environment.runMode
  put paramCount(), the result
  member("page").text = "first" & RETURN & "second"
  put "third" after field "page"
  put line 2 of field "page"
  put 5 into field "number"
  put field "number" + 1
  m = new(#bitmap)
  m.image = image(4, 6, 32)
  put m.width, m.height, m.rect, m.regPoint, m.type, m.depth
end
