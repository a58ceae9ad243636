-- What authors of scripts are used to: commands with lists, numbers with a bare point, copies of members, and
-- variables that are shown.
global gTotal, gName

on main
  show [1, 2]
  show [#a: [1, 2]], "second"
  list = [3, 1]
  sort list
  list [1] = 7
  put list
  put 5. * 2, (5.), 1. + 1, 2.float, [1., 2]

  member("page").text = "one"
  member("page").duplicate()
  put member(1).name, member(1).text, member(1).type
  m = new(#bitmap)
  m.image = image(4, 2, 8, #grayscale)
  m.regPoint = point(1, 1)
  duplicate m, member("copy")
  m.image.setPixel(0, 0, 255)
  put member("copy").image.getPixel(0, 0, #integer), m.image.getPixel(0, 0, #integer)
  put member("copy").regPoint, member("copy").image.paletteRef, m.duplicate(9).rect, member(9).width
  put findEmpty(member 1), findEmpty(member 9), findEmpty(member "nowhere")
  put _player.applicationName

  gTotal = 3
  gName = "x"
  counted = 4
  m = rect(0, 0, 1, 1)
  showLocals
  showGlobals()
  _global.showGlobals()
  clearGlobals
  showGlobals
  nothing_yet.value = 3
end

on show a, b
  put a, b
end
