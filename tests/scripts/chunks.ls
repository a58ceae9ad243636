-- Writing and deleting chunks, text functions, characters beyond ASCII.
on main
  t = "a,b,c"
  put "B" into item 2 of t
  put t
  put "!" after item 1 of t
  put t
  put "?" before char 1 of t
  put t
  put "e" into item 5 of t
  put t
  t.item[4] = "d"
  put t
  delete item 1 of t
  put t
  delete char 1 to 2 of t
  put t
  w = "one two three"
  delete word 2 of w
  put w
  delete word 2 of w
  put w
  w.line[1].delete()
  put w
  d = "one two three,four"
  d.word[2].delete()
  put d
  d.item[1].char[1..2].delete()
  put d
  put "line 3" into line 3 of w
  put w.line.count
  put length("abc"), chars("abcdef", 2, 4), offset("CD", "abcde"), offset("x", "abc")
  put charToNum("A"), numToChar(66), charToNum(""), numToChar(228), length("äöü"), char 2 of "äöü", charToNum("ä")
  put string(12), string(1.5), string(#sym), string([1, "a"]), string(VOID)
  put symbol("Foo"), value("1 + 2 * 3"), value("[#a: 1]"), value("no such thing"), value("(")
  put "a" & SPACE & "b", "[" & EMPTY & "]"
end
