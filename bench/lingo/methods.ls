on main
  o = new(script "Adder")
  repeat with i = 1 to 500000
    o.add(i)
  end repeat
  put o.pSum
end
