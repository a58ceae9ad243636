on main
  s = "abcdefghij"
  repeat with i = 1 to 16
    put s after s
  end repeat
  count = 0
  repeat with i = 1 to s.length
    if s.char[i] = "c" then count = count + 1
  end repeat
  put count
end
