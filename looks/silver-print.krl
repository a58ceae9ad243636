krlimage look 1

title: Silver print
description: Rich black and white on warm paper, as from a careful darkroom.
parameter warmth: 0.3 from 0.0 to 1.0 "how warm the paper is"

desaturatePro(0.45, 0.45, 0.1)
levels(8, 1.05, 246, 6, 250, #RGB)
multiColourise([0: rgb(14, 10, 9), 35: rgb(92, 84, 78), 70: rgb(190, 180, 166), 100: rgb(255, 249, 236)], $warmth)
sharpenBrightness(radius: 0.4%, amount: 0.5, threshold: 4)
vignette(theColor: rgb(20, 14, 10), transparency: 90, scaleX: 1.15, scaleY: 1.15, blur: 30%)
