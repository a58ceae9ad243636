property value, pStep, friend

on new me, start
  value = start
  if voidP(start) then value = 0
  pStep = 1
  return me
end

on up me, by
  if voidP(by) then by = pStep
  value = value + by
  return me.value
end

on describe me
  return "value" && value
end

on help me
  return "counts"
end
