-- Every statement form: assignment, put, if, case, repeat, return, exit, globals.
global gCount

on main args
  put "assignment"
  set a to 1
  set b = 2
  c = a + b
  put a, b, c
  put 5 into d
  put d
  put " and more" after d
  put "first " before d
  put d

  put "if"
  if c = 3 then put "one line"
  if c = 4 then put "no"
  else put "else on the next line"
  if c = 4 then put "no" else put "else on the same line"
  if c = 1 then
    put "one"
  else if c = 3 then
    put "three"
  else
    put "neither"
  end if
  if c = 3 then
    if a = 2 then put "inner"
  else
    put "outer else"
  end if

  put "case"
  repeat with x in [1, 2, "THREE", #four, 9]
    put named(x)
  end repeat

  put "repeat"
  repeat with i = 1 to 3
    put i
  end repeat
  repeat with i = 3 down to 1
    put i
  end repeat
  repeat with i = 2 to 1
    put "never"
  end repeat
  i = 0
  repeat while TRUE
    i = i + 1
    if i = 2 then next repeat
    if i > 4 then exit repeat
    put i
  end repeat

  put "handlers"
  gCount = 0
  count5
  count5()
  put gCount
  put optional(1), optional(1, 2)
  put leavesEarly()
  PUT Named(1)
  put 1 + \
      2
  put nested(nested(nested(1)))
  constants
end main

on named x
  case x of
    1, 2:
      return "small"
    "three": return "a string"
    #four: return "a symbol"
    otherwise:
      return "otherwise"
  end case
end

on count5
  global gOther
  gCount = gCount + 5
  gOther = 1
end

on optional a, b
  if voidP(b) then return "only" && a
  return a && b
end

on leavesEarly
  repeat with i = 1 to 10
    if i = 3 then exit
  end repeat
  return "never"
end

on nested(n)
  return n * 2
end

on constants
  if TRUE = 1 then put VOID = VOID, EMPTY = "", PI > 3
end
