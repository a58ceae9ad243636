-- Points, rects and colours: their parts and their arithmetic.
on main
  p = point(10, 20)
  put p, p.locH, p.locV, p[1], p + point(1, 2), p * 2, p / 4, p - 1, -p
  p.locH = 5
  p[2] = 6
  put p, point(1.5, 2), ilk(p), p = point(5, 6)
  r = rect(1, 2, 11, 22)
  put r, r.width, r.height, r.left, r.top, r.right, r.bottom, r[4]
  put r + rect(1, 1, 1, 1), r * 2, r.offset(10, 20), r.inflate(1, 2)
  put rect(point(1, 2), point(3, 4)), point(1, 2).inside(r), inside(point(11, 2), r)
  put union(r, rect(0, 5, 5, 30)), intersect(r, rect(5, 5, 50, 50)), r.intersect(rect(90, 90, 91, 91))
  r.left = -1
  put r
  c = rgb(255, 128, 0)
  put c, c.red, c.green, c.blue, rgb("#0080FF"), rgb("ff00ff"), color(1, 2, 3), color(#rgb, 4, 5, 6)
  put c.hexString(), rgb(300, -5, 1.6), c = rgb(255, 128, 0), ilk(c)
  c.green = 7
  put c, c + rgb(10, 10, 10), c - rgb(100, 100, 100)
  l = [c]
  l[1].blue = 300
  put l, c
end
