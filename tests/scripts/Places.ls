property pText, pList, pCount

on new me
  pText = "p"
  return me
end

on counted me
  sum = 0
  repeat with pCount = 1 to 4
    sum = sum + pCount
    if pCount = 2 then pCount = 3
  end repeat
  return sum
end

on added me, more
  pText = pText & more
  put "+" after pText
  return pText
end
