krlimage look 1

title: Slide film
description: Deep, saturated colours with clean whites, as projected in a dark room.
parameter colour: 1.22 from 1.0 to 1.6 "factor on colourfulness"

threeStripColor(20, 20, 20, mix: 0.3)
saturation($colour)
contrast(1.12, #RGB)
levels(6, 1.02, 248, 0, 255, #RGB)
sharpenBrightness(radius: 0.3%, amount: 0.6, threshold: 5)
