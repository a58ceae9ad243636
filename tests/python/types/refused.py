"""Mistakes that `mypy --strict` finds before the code runs; each line names the kind."""

import krlimage
import numpy as np

picture = np.zeros((2, 2, 4), np.uint8)
krlimage.vignette(picture, "round")  # arg-type
krlimage.vignette(picture, blur=0.5)  # arg-type
krlimage.vignette(picture, invert="yes")  # arg-type
krlimage.vignette(picture, theColor=(1, 2))  # arg-type
krlimage.brightness(picture, "x")  # arg-type
krlimage.brightness(picture, 40, out="done.png")  # arg-type
krlimage.brightness(picture, 40, order="RGBA")  # arg-type
krlimage.brightness(picture, level=40)  # call-arg
krlimage.brightness(7)  # arg-type
krlimage.brightness("photo.png")  # arg-type
krlimage.brightness(picture).shapes  # attr-defined
krlimage.composite(picture)  # call-arg
krlimage.halfSize(picture, mix=0.5)  # call-arg
krlimage.vignettes(picture)  # attr-defined
krlimage.zoomBlur(picture, 9, (1, 2, 3))  # arg-type
krlimage.sample("forest")  # arg-type
krlimage.looks["noir"].applied  # attr-defined
krlimage.batch("a.png", "sepia", "b.png", quality="high")  # arg-type
