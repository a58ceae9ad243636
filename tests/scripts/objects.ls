-- Parent scripts: instances, properties, ancestors, static handlers.
on main
  a = new(script "Counter", 5)
  b = script("Counter").new()
  a.up()
  a.up(10)
  up a
  put a.value, b.value, a.pStep
  b.value = 100
  b.up()
  put b.describe(), the value of b
  put ilk(a), objectP(a)
  c = new(script "LoudCounter", 1)
  c.up()
  put c.describe(), c.value, c.loudness
  put call(#up, [a, b]), a.value, b.value
  put script("Counter").help()
  a.friend = b
  b.friend = a
end
