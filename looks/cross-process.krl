krlimage look 1

title: Cross process
description: Film in the wrong bath: green shadows, yellow light and hard contrast.
parameter strength: 0.8 from 0.0 to 1.0 "share of the whole change"

levels(18, 1.12, 240, 0, 255, #Red, mix: $strength)
levels(8, 1.08, 244, 4, 255, #Green, mix: $strength)
levels(0, 0.9, 255, 44, 208, #Blue, mix: $strength)
contrast(1.1, #RGB, mix: $strength)
saturation(1.12)
