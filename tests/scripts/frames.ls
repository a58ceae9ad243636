-- Frames: where go leads, and a movie's own properties.
property pLog, pFrames

on prepareMovie
  pLog = []
  pFrames = [4, "next", "loop"]
end

on startMovie
  helper("started")
  put script("frames").pLog, ilk(script("frames"))
end

on helper what
  pLog.add(what)
end

on exitFrame
  pLog.add(the frame)
  if pFrames.count > 1 then
    go to pFrames[1]
    deleteAt(pFrames, 1)
  else
    go the frame
  end if
end

on stopMovie
  put pLog, the frame
  go 5
end
