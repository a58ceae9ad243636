krlimage look 1

title: Soft corners
description: Corners that darken gently, alike on pictures of any size.
parameter corners: 90 from 0 to 255 "how dark the corners are"
parameter soft: 35% from 10% to 60% "how gradually they darken"

vignette(theColor: rgb(0, 0, 0), transparency: $corners, scaleX: 1.2, scaleY: 1.2, blur: $soft)
