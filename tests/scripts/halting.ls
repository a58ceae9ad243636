-- `halt` ends everything, wherever it stands; `alert` speaks elsewhere than `put`.
on main
  alert "an alert" & RETURN & "of two lines"
  put the paramCount, param(1), param(9)
  inner()
  put "never"
end

on inner
  repeat while TRUE
    put "halting"
    halt
  end repeat
end
