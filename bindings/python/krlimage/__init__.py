"""A hundred effects for pictures: arrays in, arrays out.

>>> import krlimage
>>> picture = krlimage.sample("landscape")
>>> warmer = krlimage.colourTemperature(picture, 4200.0)
>>> framed = krlimage.vignette(warmer, blur=160, out=warmer)

Every effect is a function; `effects` lists them. Their results are the same bytes on every machine.
"""

from ._batch import BatchResult, batch
from ._calls import apply, get_threads, set_threads
from ._catalogue import Argument, Effect, effects
from ._effects import *
from ._effects import __all__ as _names
from ._errors import KrlError
from ._lingo import LingoError, LingoResult, run_lingo
from ._looks import Look, Parameter, looks
from ._native import release as _release
from ._notebook import show_effect
from ._pictures import rgba
from ._samples import sample

__version__ = _release()
__all__ = [
    *_names,
    "Argument",
    "BatchResult",
    "Effect",
    "KrlError",
    "LingoError",
    "LingoResult",
    "Look",
    "Parameter",
    "apply",
    "batch",
    "effects",
    "get_threads",
    "looks",
    "rgba",
    "run_lingo",
    "sample",
    "set_threads",
    "show_effect",
]
