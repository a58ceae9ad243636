-- Spellings that scripts in circulation use.
global gäste, $cost

on main
  repeat with i = 1 to 2 then
    put "turn" && i
  end repeat
  i = 0
  repeat while i < 1 then
    i = i + 1
  end repeat
  put {#ink: 36, "key": {1, 2}}, {}, {:}
  nothing()
  nothing
  if i = 1
  then put "then on the next line"
  if i = 2
  then
    put "no"
  else
    put "else"
  end if

  gäste = 3
  $cost = +4 - +1
  größe = gäste * $cost
  put größe, #größe

  counter = new(script("Counter"), 7)
  put counter.value
  other = new(script "Counter", 8)
  put other.value
  third = new script "Counter"
  put ilk(third)
  made = new xtra "KRLImageXtra"
  put ilk(made)

  list = [1, 2, 3]
  delete list[1]
  append list (4)
  add list (5)
  append(list, 6)
  append (list), 7
  put list
  ages = [#ann: 1]
  addProp ages (#bob), 2
  delete ages[#ann]
  put ages

  case the itemDelimiter of
    ",": put "comma"
  end case

  text = "abc"
  delete char -30000 of text
  put text
  put char 1.6 of "abc", char -1 of "abc", char 2 to -1 of "abcd"

  put "one \
two"
  put foo(1, \
    2), foo(1, -- the second comes \
      3)
  -- A comment that goes on \
  in the next line, which is no code.
  listed = [1] -- A note beside code does not go on \
  put listed -- \
  summed = 1 -- unless the next line continues the code \
    + 2
  both = TRUE and -- or this one does not end it \
    summed = 3
  put summed, both
  put the number of lines in ("a" & RETURN & "b")
  tested = not (1 = 2) and not 0
  put tested

  pass()
end

on foo a, b
  return a + b
