krlimage look 1

title: Dream glow
description: Light that spills from the bright parts over a soft, pale picture.
parameter glow: 150 from 0 to 255 "opacity of the light"
parameter reach: 4% from 1% to 10% "how far the light spreads"

gleamBlurComposite($before, #normal, 0, 110, 250, $reach, #screen, 0.1, $glow, [0: rgb(255, 240, 225)], #from_image)
diffuse(2%, 0.55, #standard, #rgb)
levels(0, 1.05, 255, 10, 255, #RGB)
saturation(1.06)
