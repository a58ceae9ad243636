-- Integers of 32 bits that wrap, doubles, Lingo's division and rounding, precedence.
on main
  put 7 / 2, -7 / 2, 7 / -2, 7 mod 3, -7 mod 3
  put 7.0 / 2, 7 / 2.0, 1.0 / 3
  put 2147483647 + 1, -2147483648 - 1, 65536 * 65536, 4294967295
  put 1 + 2 * 3, (1 + 2) * 3, 10 - 2 - 3, 2 * 3 mod 4
  put -2 * 3, 2 - -3, -(2 + 3)
  put 1 < 2, 2 <= 2, 3 > 4, 4 >= 5, 1 = 1.0, 1 <> 2
  put 1 = 1 and 2 = 2, 1 = 2 or 2 = 2, not 1, not 0
  put 1 + 2 & 3 + 4, "a" & 1 = "a1"
  put integer(2.5), integer(-2.5), integer(2.4), integer("12"), integer("no")
  put float(3), float("2.5"), integer(1e30)
  put abs(-3), abs(-2.5), sqrt(16), sqrt(10), sqrt(2.0), power(2, 10)
  put max(3, 1, 2), min(3, 1, 2), max([4, 9, 6]), min([])
  put bitAnd(12, 10), bitOr(12, 10), bitXor(12, 10), bitNot(0)
  put sin(0), cos(0), atan(1) * 4, exp(0), log(1)
  put "3" + 4, "1.5" * 2, VOID + 1
  put 1e3, 1.5e-2, 100000.0, 0.00001
  the floatPrecision = 2
  put PI, 1.005, [1.0]
  the floatPrecision = 8
  put PI
  the floatPrecision = 4
  put 1.0 / 0, -1.0 / 0
  put TRUE, FALSE, VOID, EMPTY
  put the maxInteger
  the randomSeed = 5
  a = random(100)
  b = random(100)
  the randomSeed = 5
  put a = random(100), b = random(100), a >= 1 and a <= 100
  put 1 + [], [] * 2, -[], [1] + [], [[], 1] + 1
end
