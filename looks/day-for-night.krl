krlimage look 1

title: Day for night
description: A scene shot by day, as if by moonlight.
parameter light: -8 from -90 to 0 "levels to add; lower is a darker night"
parameter colour: 0.3 from 0.0 to 1.0 "share of the colours by day"

dayForNight(0.6%, 0.7, rgb(52, 78, 132), $colour, 0.35, 0.6, $light, 1.08, 1.0, #RGB)
vignette(theColor: rgb(2, 5, 16), transparency: 150, scaleX: 1.1, scaleY: 1.1, blur: 35%)
