krlimage look 1

title: Bleached silver
description: Silver left in the print: hard, metallic and almost without colour.
parameter silver: 170 from 0 to 255 "how strongly the silver shows"
parameter colour: 0.55 from 0.0 to 1.0 "factor on colourfulness"

bleachBypass($silver, 1.1, $colour)
colourBalance(0.98, 1.0, 1.03)
grain(0.2%, 0.2%, 0.2%, 0.08, 0.08, 0.08, 50, 200, 5, #GREYSCALE)
