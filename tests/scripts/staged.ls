-- What needs a stage is refused where it is written.
on main
  put "before"
  sprite(5).loc = point(1, 2)
  put "after"
end
