-- Linear and property lists, as methods and as functions.
on main
  l = [3, 1, 2]
  l.add(5)
  append(l, 4)
  add l, 6
  put l, l.count, count(l), l[1], l.getAt(2), getLast(l)
  l[2] = 10
  setAt(l, 8, 80)
  put l
  l.deleteAt(8)
  l.deleteOne(10)
  put l, l.getPos(5), l.getOne(5), l.getOne(99), l.findPos(2)
  l.sort()
  l.add(4)
  put l
  l.addAt(1, 0)
  put l, max(l), min(l)
  d = l.duplicate()
  d[1] = "changed"
  e = l
  e[2] = "same"
  put l[1], l[2], d[1]
  put [1, 2] + [3, 4], [1, 2] * 2, 10 - [1, 2], [1, 2] = [1, 2], [1, 2] = [1, 3]
  put [[1, 2], [3, [4]]][2][2][1], [1, [2, 3]] + 1
  put list(1, 2, 3), [], listP([]), ilk([]), ilk([:])

  p = [#b: 1, #a: 2, "c": 3]
  put p, p.count, p[1], p[#b], p["c"], p.a, p.getaProp(#a), p.getaProp(#zz)
  p.addProp(#d, 4)
  p[#e] = 5
  p.f = 6
  setaProp(p, #b, 11)
  p.setProp(#a, 22)
  put p
  put p.getPropAt(2), p.findPos(#a), p.findPos(#zz), p.getOne(22), p.getPos(22)
  p.deleteProp(#e)
  p.sort()
  p.addProp(#bb, 0)
  put p
  put getProp(p, #A)
  q = [name: "x", 2: 3]
  put q
  q.deleteAll()
  put q, [#a: 1] = [#A: 1]
  n = ["b", "A", "c", 2, 1.5]
  sort n
  put n, n.findPosNear("B")
end
