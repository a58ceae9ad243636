krlimage look 1

title: Faded print
description: A snapshot from an album: milky blacks, yellowed whites and tired colours.
parameter fade: 30 from 0 to 70 "level of the darkest tone"

saturation(0.72)
levels(0, 1.05, 255, $fade, 236, #RGB)
levels(0, 1.0, 255, 0, 226, #Blue)
levels(0, 1.06, 255, 6, 255, #Red)
grain(0.22%, 0.22%, 0.22%, 0.06, 0.06, 0.06, 60, 210, 21, #RGB)
vignette(theColor: rgb(70, 40, 20), transparency: 70, scaleX: 1.2, scaleY: 1.2, blur: 30%)
