krlimage look 1

title: Noir
description: Hard black and white from a red filter, deep corners and fine grain.
parameter contrast: 1.35 from 1.0 to 2.0 "factor on the distance from mid grey"
parameter corners: 190 from 0 to 255 "how dark the corners are"

desaturatePro(0.9, 0.35, 0.1)
contrast($contrast, #RGB)
vignette(theColor: rgb(0, 0, 0), transparency: $corners, scaleX: 1.05, scaleY: 1.05, blur: 30%)
grain(0.18%, 0.18%, 0.18%, 0.12, 0.12, 0.12, 40, 210, 11, #GREYSCALE)
