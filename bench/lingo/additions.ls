on main
  sum = 0
  repeat with i = 1 to 3000000
    sum = sum + i mod 7
  end repeat
  put sum
end
