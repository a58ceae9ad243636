krlimage look 1

title: Old television
description: Smeared colour, a bluish tube, noise and a mask of dots.
parameter noise: 0.1 from 0.0 to 0.4 "how much it snows"
parameter smear: 1.2% from 0% to 4% "how far colours run"

blurProYUV(0.15%, $smear, $smear)
saturation(1.15)
levels(0, 1.1, 240, 14, 245, #RGB)
colourBalance(0.95, 1.0, 1.08)
noise($noise, 3, #RGB)
drawCheckerBox(size: 0.3%, mix: 0.06)
vignette(#rectangle, rgb(0, 0, 0), 235, 0.98, 0.98, blur: 9%)
