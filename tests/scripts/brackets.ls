-- Characters of strings by brackets.
on main
  put "abc"[2], "abc"[-1], "abc"[9], "abc"[0], "abc"[1.6], "äöü"[2]
  s = "hello"
  put s[1] & s[5], s[2..4], s[2..-1], s[4..9], s[3..2], s[2..4].length
  put s.word[1][1], ["ab", "cd"][2][1], [#name: "ann"].name[1], getAt(s, 2)
  put "J" into s[1..1]
  s[2..2] = "E"
  delete s[5..5]
  put s
  repeat with i = 1 to s.length
    put s[i]
  end repeat
  s[1] = "h"
end
