krlimage look 1

title: Neon night
description: Every edge drawn in light on black.
parameter width: 0.2% from 0.1% to 0.8% "width of the lines"
parameter light: 3.0 from 1.0 to 8.0 "factor on their light"

glowingEdges($width, 0.3%, $light)
saturation(1.5)
defocus(0.8%, 0.1, #RGB, mix: 0.35)
