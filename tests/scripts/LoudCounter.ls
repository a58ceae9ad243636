property ancestor, loudness

on new me, start
  ancestor = new(script "Counter", start)
  loudness = 3
  return me
end

on describe me
  return ancestor.describe() & "!" && "step" && me.pStep
end
