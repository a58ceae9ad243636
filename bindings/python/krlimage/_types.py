"""Types of the functions' parameters."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Dict, Literal, Mapping, Protocol, Sequence, Tuple, Union

import numpy as np

if TYPE_CHECKING:
    import numpy.typing as npt

    Array = npt.NDArray[np.uint8]
else:
    Array = np.ndarray


class SupportsArrayInterface(Protocol):
    """What `numpy.asarray` takes by address, such as `PIL.Image.Image`."""

    @property
    def __array_interface__(self) -> Dict[str, Any]: ...


Picture = Union[Array, SupportsArrayInterface, memoryview]
"""``uint8`` of height x width x 4, height x width x 3 or height x width."""

Colour = Union[str, Tuple[int, int, int]]
"""``"#rrggbb"``, or red, green and blue from 0 to 255."""

Truth = Union[bool, Literal["false", "true"]]
"""Yes or no; the names are those of the command line."""

Length = Union[int, str]
"""Pixels, or a percentage of the picture's shorter side such as ``"10%"``."""

RealLength = Union[float, str]
"""The same for lengths that are no whole number."""

Point = Tuple[Union[int, str], Union[int, str]]
"""x and y from the top left corner, in pixels or as percentages of width and height."""

Region = Tuple[Union[int, str], Union[int, str], Union[int, str], Union[int, str]]
"""Left, top, right and bottom in the same manner; right and bottom are just outside."""

Colours = Union[Mapping[int, Colour], Sequence[Union[Colour, Tuple[int, Colour]]]]
"""Colours under numbers from 0 to 100: a dict, pairs, or colours that are spread evenly."""

Tree = Union[Mapping[Any, Any], Sequence[Any]]
"""Dicts, lists and values within each other."""
