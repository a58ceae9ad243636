krlimage look 1

title: Warm evening
description: Low sun: golden light, gently lifted shadows and soft corners.
parameter kelvin: 3900.0 from 2800.0 to 4900.0 "temperature of the light; lower is warmer"
parameter corners: 110 from 0 to 255 "how dark the corners are"

colourTemperature($kelvin, mix: 0.75)
levels(0, 1.06, 248, 8, 255, #RGB)
saturation(1.08)
diffuse(1.6%, 0.5, #standard, #rgb, mix: 0.3)
vignette(theColor: rgb(60, 24, 6), transparency: $corners, scaleX: 1.15, scaleY: 1.15, blur: 30%)
