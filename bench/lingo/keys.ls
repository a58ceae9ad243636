on main
  list = [:]
  repeat with i = 1 to 200000
    list["key" & i] = i
  end repeat
  sum = 0
  repeat with i = 1 to 200000
    sum = sum + list["key" & i]
  end repeat
  put sum
end
