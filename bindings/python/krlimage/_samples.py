"""The pictures that examples use."""

from __future__ import annotations

from pathlib import Path
from typing import Literal

import numpy as np

from ._pictures import rgba
from ._types import Array

FOLDER = Path(__file__).parent / "samples"


def sample(name: Literal["landscape", "portrait", "greenscreen", "logo"] = "landscape") -> Array:
    """A picture to try effects on: RGBA, 960 by 640 pixels.

    Parameters
    ----------
    name : {"landscape", "portrait", "greenscreen", "logo"}, default "landscape"
        Which one; all but the logo are opaque.

    Returns
    -------
    numpy.ndarray
        ``uint8`` of 640 x 960 x 4.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.sample("portrait").shape
    (640, 960, 4)
    """
    from PIL import Image  # type: ignore[import]

    path = FOLDER / f"{name}.png"
    if not path.exists():
        known = ", ".join(sorted(f'"{file.stem}"' for file in FOLDER.glob("*.png")))
        raise ValueError(f"name: expected one of {known}, got {name!r:.200}")
    with Image.open(path) as image:
        return rgba(image)
