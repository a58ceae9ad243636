-- What values are: ilk, the type tests, symbols and their spelling.
on main
  everything = [1, 1.5, "s", #Sym, VOID, [], [:], point(1, 2), rect(1, 2, 3, 4), rgb(1, 2, 3), image(1, 1, 32)]
  repeat with x in everything
    put ilk(x), integerP(x), floatP(x), stringP(x), symbolP(x), voidP(x), listP(x), objectP(x)
  end repeat
  put ilk([], #list), ilk([:], #list), ilk([:], #propList), ilk(1, #number), ilk("s", #symbol)
  put #first = #FIRST, #First, symbol("first")
  put ilk(xtra "KRLImageXtra"), ilk(new(xtra "KRLImageXtra"))
  put (xtra "KRLImageXtra")
end
