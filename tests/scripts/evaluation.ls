-- Orders of evaluation, loops and assignments to every kind of place.
property pCount
global gCount, gText

on main
  operands()
  loops()
  counters()
  places()
  colours()
  texts()
  outerLoops()
end

on noted list, item
  list.add(item)
  return list
end

-- An operand to the left of a call keeps its value.
on operands
  l = [1]
  put l & noted(l, 2)
  put "" & l & noted(l, 3)
  put l && noted(l, 4) & l && noted(l, 5)
  put l, noted(l, 6), l
  x = 1
  put x + changed("x = 10") + x
  put [x, changed("x = 20"), x]
  put [#a: x, #b: changed("x = 30"), #c: x]
  put x && x & x, x - -x, not x, -x
  s = "a"
  s = s & l.count & s && s
  put s
  s = 5
  s = s & s
  put s
  n = [1, 2, 3]
  n = [n, n[2], n.count]
  put n
  n = n[1][3] + n[2] * n[3] mod 5 / 2
  put n
  put 7 mod 3, -7 mod 3, 7 mod -3, 7 / -2, 2147483647 + 1, 7 / 2.0
end

on changed statement
  return 100
end

on loops
  found = []
  repeat with i = 1 to 3
    repeat with j = i down to 1
      if j = 2 then next repeat
      case i + j of
        4: exit repeat
        2, 3: found.add(i * 10 + j)
        otherwise
          found.add(0)
      end case
    end repeat
  end repeat
  put found, i, j
  n = 3
  repeat with i = 1 to n
    n = 2
    i = i + 1
  end repeat
  put i, n
  repeat with i = 2147483646 to 2147483647
    put i
  end repeat
  repeat with i = "2" to 3.4
    put i
  end repeat
  w = 0
  repeat while w < 10
    w = w + 1
    if w mod 2 then next repeat
    if w > 6 then exit repeat
  end repeat
  put w
  growing = [1, 2]
  sum = 0
  repeat with item in growing
    if growing.count < 5 then growing.add(item + 2)
    sum = sum + item
  end repeat
  put sum, growing
  repeat with v in [#a: 1, #b: [2]]
    put v
  end repeat
  put early(3), early(30)
end

on early n
  repeat with i = 1 to 10
    repeat while TRUE
      case n of
        i: return "found" && i
      end case
      exit repeat
    end repeat
  end repeat
end

on counters
  repeat with gCount = 1 to 3
    bump()
  end repeat
  put gCount
  repeat with gText in ["p", "q"]
    put gText
  end repeat
  o = new(script "Places")
  put o.counted(), o.pCount
end

on bump
  gCount = gCount + 1
end

on places
  o = new(script "Places")
  o.pText = "one two"
  put "three" into word 2 of o.pText
  put o.pText
  put "!" after o.pText
  put "(" before o.pText
  put o.pText
  put "x" after char 1 to 2 of o.pText
  put o.pText
  delete word 1 of o.pText
  put o.pText
  o.pList = [[1, 2], [#k: "deep"]]
  o.pList[1][2] = 5
  o.pList[2].k = "deeper"
  put "s" after o.pList[2][#k]
  put o.pList
  delete o.pList[1]
  put o.pList
  l = [3, 4]
  l[l[1] + 1] = l
  l[4] = 0
  put l
  gText = "g"
  put "1" after gText
  gText = gText & "2"
  put "0" before gText
  put "-" into char 2 of gText
  put gText
  put "new" after fresh
  put "er" before another
  put fresh, another
  put "z" into item 3 of listed
  put listed
  put [o.added("a"), o.added("b")]
end

on colours
  c = rgb(1, 2, 3)
  d = c
  c.red = 9
  put c, d
  l = [c, #k]
  l[1].green = 300
  put l, c
  o = new(script "Places")
  o.pList = [#c: d]
  o.pList.c.blue = 7
  put o.pList, d
  e = [#red: 1]
  e.red = 2
  put e
end

on texts
  s = "alpha beta,gamma"
  put s.char[2], s.word[2].char[1..2], s.item[2], char 3 of word 2 of s
  put char 2 to 4 of s, the last word of s, the number of chars in s, s.line.count
  p = [#item: [1, 2, 3], #char: "c"]
  put p.item[2], p.item, p.char
  i = 3
  put s.char[i], s.char[i..i + 1], s.char["4"], s.char[1.6]
  t = ""
  repeat with i = 1 to 5
    t = t & i & ","
    if i = 3 then kept = t
  end repeat
  put t, kept
  put s contains "BETA", s starts "al", "b" > "a", s = "ALPHA beta,gamma"
end

-- Outside a loop, these end the handler.
on outerLoops
  put "before"
  if 1 then exit repeat
  put "after"
end
