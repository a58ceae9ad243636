krlimage look 1

title: Comic
description: Flat inks within dark outlines.
parameter steps: 10 from 4 to 16 "steps of tone"
parameter colour: 1.35 from 0.5 to 2.0 "factor on colourfulness"

sobel(#RGB)
desaturate
superContrast(70, 235, #RGB)
fastGaussianBlur(0.1%, #RGB)
composite($before, #multiply)
saturation($colour)
oilPaint(2, 40)
posterise($steps, #RGB, mix: 0.5)
