property pSize, ancestor

on new me, name
  ancestor = new(script "Base", name)
  pSize = 3
  return me
end

on describe me, extra
  return "derived," && callAncestor(#describe, me, extra)
end
