-- What a script printed before it failed stays; the place is told.
on main
  put "before"
  inner([1, 2, 3])
  put "after"
end

on inner values
  put values[3]
  put values[4]
end
