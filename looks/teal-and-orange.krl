krlimage look 1

title: Teal and orange
description: Cold shadows under warm skin and light, as in many feature films.
parameter strength: 0.42 from 0.0 to 1.0 "share of the grade"

multiColourise([0: rgb(2, 16, 26), 30: rgb(28, 74, 88), 60: rgb(190, 150, 110), 100: rgb(255, 240, 214)], $strength)
saturation(1.12)
contrast(1.08, #RGB)
vignette(theColor: rgb(0, 10, 16), transparency: 110, scaleX: 1.15, scaleY: 1.15, blur: 30%)
