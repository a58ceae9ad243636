krlimage look 1

title: Cool morning
description: Clear light before sunrise: cold, pale and quiet.
parameter kelvin: 6800.0 from 5200.0 to 9000.0 "temperature of the light; higher is colder"
parameter haze: 0.35 from 0.0 to 1.0 "how much haze hangs in the air"

colourTemperature($kelvin, mix: 0.7)
colourBalance(0.97, 1.03, 0.98)
saturation(0.8)
levels(0, 1.12, 255, 16, 250, #RGB)
diffuse(2.5%, 0.35, #standard, #rgb, mix: $haze)
