krlimage look 1

title: Security camera
description: Greenish grey, coarse and noisy, from a cheap lens in a corner.
parameter coarseness: 0.5% from 0.2% to 2% "side of a block of the picture"
parameter noise: 0.12 from 0.0 to 0.5 "strength of the noise"

desaturate
superContrast(20, 225, #RGB)
mosaic($coarseness, #RGB, mix: 0.7)
noise($noise, 8, #RGB)
sharpen(0.6%, 1.2, 4, #RGB)
multiColourise([0: rgb(8, 14, 10), 50: rgb(104, 124, 108), 100: rgb(224, 240, 226)], 0.9)
vignette(theColor: rgb(0, 4, 0), transparency: 200, scaleX: 1.05, scaleY: 1.05, blur: 25%)
