property pName, pLog, ancestor

on new me, name
  pName = name
  pLog = []
  return me
end

on describe me, extra
  return "base" && me.pName && extra
end

on stepFrame me
  pLog.append("step")
end
