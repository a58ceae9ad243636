krlimage look 1

title: Miniature
description: Blurred above and below a sharp band and vivid in between, like a model seen from near.
parameter blur: 2.2% from 0.5% to 6% "how soft it is above and below"

saturation(1.3)
contrast(1.1, #RGB)
fastGaussianBlur($blur, #RGB, region: rect(-100%, -100%, 200%, 48%), feather: 22%)
fastGaussianBlur($blur, #RGB, region: rect(-100%, 68%, 200%, 200%), feather: 22%)
vignette(transparency: 60, theColor: rgb(0, 0, 0), scaleX: 1.2, scaleY: 1.2, blur: 30%)
