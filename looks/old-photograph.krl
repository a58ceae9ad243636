krlimage look 1

title: Old photograph
description: A brown print a hundred years old, a little out of focus and pale toward its edges.
parameter paleness: 120 from 0 to 255 "how far the edges have faded"

fastGaussianBlur(0.12%, #RGB)
desaturatePro(0.2, 0.45, 0.35)
levels(10, 1.1, 240, 28, 235, #RGB)
multiColourise([0: rgb(36, 22, 12), 40: rgb(124, 94, 62), 75: rgb(206, 180, 138), 100: rgb(246, 232, 202)], 0.9)
grain(0.3%, 0.3%, 0.3%, 0.09, 0.09, 0.09, 40, 220, 31, #GREYSCALE)
vignette(theColor: rgb(240, 224, 190), transparency: $paleness, scaleX: 1.05, scaleY: 1.05, blur: 30%)
