krlimage look 1

title: Fine grain
description: The grain of a slow film, alike on pictures of any size.
parameter strength: 0.14 from 0.0 to 0.5 "how strongly it shows"
parameter size: 0.12% from 0.05% to 0.5% "of a grain"

grain($size, $size, $size, $strength, $strength, $strength, 40, 215, 7, #GREYSCALE)
