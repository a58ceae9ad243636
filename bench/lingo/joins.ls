on main
  s = ""
  repeat with i = 1 to 500000
    s = s & "piece" & i
  end repeat
  put s.length
end
