-- The cast: castLib, members by name and number, members that a script makes, collections.
on main
  put castLib 1, castLib("Internal").name, the name of castLib 1, castLib(1).number, ilk(castLib(1))
  put the number of castMembers of castLib 1 = the number of members, the number of castLibs
  first = the number of members + 1
  m = new(#bitmap)
  put m.number = first, m.memberNum = first, member(first).width, the number of members = first
  m.image = image(4, 6, 32)
  m.name = "drawn"
  put member("drawn").rect, member(first).name, m.castLib, m.castLibNum, (member "drawn").height
  n = new(#text, castLib 1)
  n.text = "words"
  put n.number - m.number, field (first + 1), the text of member (first + 1) of castLib 1
  o = new(#bitmap, member(first + 5))
  o.image = image(2, 2, 8)
  put o.number - first, member(first + 5).depth, member(first + 3).type, the number of members - first
  put string(o) = "(member" && (first + 5) && "of castLib 1)"
  erase(o)
  put the number of members - first, o.type
  put _movie.member["drawn"].width, _movie.member[first].name, castLib(1).member["drawn"].height
  put _movie.castLib[1].name, _movie.castLib.count, _player.xtra[1], _player.xtra.count, _movie.member.count = the number of members
  put castLib(1).member("drawn").width, _movie.newMember(#field).type
  member("later").text = "named first"
  put member("later").number, field "later"
  _global["gOne"] = 5
  put _global["gOne"], _global.gOne, _movie["frame"], _key.keyPressed("a"), keyPressed(49)
  c = rgb(255, 0, 0)
  c.colorType = #paletteIndex
  put c
  c.paletteIndex = 255
  put c
  c.colorType = #rgb
  put c
  put member(0)
end
