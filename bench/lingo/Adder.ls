property pSum

on new me
  pSum = 0
  return me
end

on add me, number
  pSum = (pSum + number) mod 1000003
end
