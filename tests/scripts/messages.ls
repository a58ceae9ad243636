-- Objects: ancestors, handlers by name, properties by name, a movie's start, frames and end.
global gActor

on prepareMovie
  put "prepare"
end

on startMovie
  o = new(script "Derived", "x")
  put o.describe("!"), o.pName, o[#pSize], o.count, o.getPropAt(1)
  put o.handler(#describe), o.handler(#nothingOfTheKind), o.handlers(), script("Base").handlers()
  put o.script, o.script.name
  o.setProp(#pSize, 9)
  setaProp o, #pName, "y"
  put o.pSize, getProp(o, #pName), o.getaProp(#pSize)
  put call(#describe, [o, new(script "Counter", 1)], "?"), call(#nowhere, [o, 5])
  raw = rawNew(script "Base")
  put raw.pName, ilk(raw)
  raw.ancestor = [#depth: 7]
  put raw.depth
  gActor = new(script "Base", "actor")
  add the actorList (gActor)
end

on exitFrame
  put "frame" && the frame && gActor.pLog
  if the frame = 2 then halt
end

on stopMovie
  put "stop"
end
