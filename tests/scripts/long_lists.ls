-- Property lists that are long enough for an index.
on main
  list = [:]
  repeat with i = 1 to 300
    list["key" & i] = i
    if i mod 3 = 0 then list[symbol("key" & i)] = -i
    if i mod 5 = 0 then list.addProp(i * 1000, "number" & i)
  end repeat
  put list.count, list["key7"], list[#key9], list["KEY9"], list.getaProp(15000), list["key301"], list[#key301]
  list.addProp("key7", "second")
  put list["key7"], list.findPos("key7"), list.findPos(#key300)
  list.deleteProp("key7")
  put list["key7"], list.count
  delete list[1]
  put list["key1"], list.findPos("key2")
  sum = 0
  repeat with i = 2 to 300
    if i <> 7 then sum = sum + list["key" & i]
  end repeat
  put sum
  list.sort()
  put list.getPropAt(1), list["key250"], list[#key250]
  list.deleteAll()
  put list["key2"], list.count
  repeat with i = 1 to 40
    list[symbol("s" & i)] = i
  end repeat
  put list["s30"], list.s31, list[#S32]
end
