-- The language as older scripts write it: commands, "the ... of", functions as properties, timers.
global gGrade

on startMovie
  set gGrade to new(xtra "KRLImageXtra")
  set answer to krlImageCreateLookupTables(gGrade, #st)
  if the error of answer <> 0 then
    alert the error of answer
    exit
  end if
  set picture = image(2, 1, 32)
  set answer = krlImageLoad(gGrade, picture)
  put getProp(answer, #error), getaProp(answer, #error), answer[#error], answer.error
  krlImageBrightness gGrade, -55, #rgb
  put getPixel(picture, 0, 0)
  put wentWell(krlImageContrast(gGrade, "much", #RGB)), wentWell(krlImageInvert(gGrade, #RGB))
  krlImageQuit gGrade
  krlImageDestroyLookupTables(gGrade)
  set gGrade = 0

  set names = []
  add names, "b"
  append names, "a"
  sort names
  put names && count(names)
  set ages to [:]
  addProp ages, #ann, 3
  setaProp ages, #bob, 4
  repeat with i = 1 to count(ages)
    put getPropAt(ages, i) && getAt(ages, i)
  end repeat
  set the ann of ages to 5
  put the ann of ages + the locH of point(1, 2) + ¬
    the width of rect(0, 0, 10, 10)

  put "12".integer + 1, (2.5).integer, 5.float, "3 + 4".value, #name.string, "name".symbol
  put 16.sqrt, the sqrt of 16, (-3).abs, "abc".length, "A".charToNum, 65.numToChar
  put 5.ilk, 5.5.ilk, "x".ilk, #x.ilk, count("hé"), length("hé")
  put sqrt(-4), sqrt(-4.0)
  put point(1, 2) + [[1], [2]]

  set cast to "painted"
  set the image of member cast to picture
  put the width of the image of member cast, the width of the image of member "painted" of castLib 1
  set kind = "Counter"
  set counter to new(script kind, 7)
  put the value of counter

  startTimer
  put the timer >= 0 and the timer < 600, the ticks >= the timer
end startMovie

on wentWell answer
  case ilk(answer.error) of
    #integer: return TRUE
    #string:
      put "failed:" && answer.error
      return FALSE
  end case
end
