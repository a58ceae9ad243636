"""From Python values to those of the engine, by the kind of argument."""

from __future__ import annotations

import numbers
import operator
import re
from typing import Any, Callable, Mapping

import numpy as np

from . import _native, _pictures
from ._native import Value

_COLOUR = re.compile("#[0-9a-fA-F]{6}")
_PERCENTAGE = re.compile(r"[-+]?[0-9]+(\.[0-9]+)?%")

INTEGERS = range(-(2**31), 2**31)


class Mismatch(Exception):
    """A value that does not fit: what was expected, and what came."""

    def __init__(self, expected: str, got: object) -> None:
        super().__init__(expected, got)
        self.expected = expected
        self.got = got


def integer(value: Any) -> Value:
    """A whole number of 32 bits."""
    try:
        number = operator.index(value)
    except TypeError:
        raise Mismatch("an integer", value) from None
    if number not in INTEGERS:
        raise Mismatch("an integer of 32 bits", value)
    return _native.integer(number)


def real(value: Any) -> Value:
    """Any real number; integers stay integers, which the engine takes too."""
    if isinstance(value, float):
        return _native.real(value)
    if not isinstance(value, numbers.Real):
        raise Mismatch("a number", value)
    return _native.real(float(value))


def symbol(value: Any) -> Value:
    """A name; a leading ``#`` is fine. Yes and no are names too."""
    if isinstance(value, (bool, np.bool_)):
        return _native.symbol("true" if value else "false")
    if not isinstance(value, str):
        raise Mismatch("a name", value)
    return _native.symbol(value[1:] if value.startswith("#") else value)


def colour(value: Any) -> Value:
    """``"#rrggbb"`` or three levels."""
    if isinstance(value, str) and _COLOUR.fullmatch(value):
        return _native.colour(int(value[1:3], 16), int(value[3:5], 16), int(value[5:7], 16))
    levels = _whole_numbers(value, 3)
    if levels is None or not all(0 <= level <= 255 for level in levels):
        raise Mismatch('a colour such as "#ff8000" or (255, 128, 0)', value)
    return _native.colour(*levels)


def point(value: Any) -> Value:
    """x and y."""
    place = _whole_numbers(value, 2)
    if place is None or not all(part in INTEGERS for part in place):
        raise Mismatch("a point such as (480, 320)", value)
    return _native.point(*place)


def region(value: Any) -> Value:
    """Left, top, right and bottom."""
    sides = _whole_numbers(value, 4)
    if sides is None or not all(side in INTEGERS for side in sides):
        raise Mismatch("left, top, right and bottom such as (0, 0, 480, 320)", value)
    return _native.list_of([_native.integer(side) for side in sides])


def colours(value: Any) -> Value:
    """A dict, pairs, or colours spread evenly from 0 to 100."""
    return _native.property_list_of([(integer(place), colour(item)) for place, item in _places(value)])


def tree(value: Any, order: int = _native.RGBA) -> Value:
    """Dicts, lists and values within each other.

    Strings are colours or names, tuples of two and three whole numbers points and colours, and lists of
    ``(name, value)`` dicts in which a name can come twice.
    """
    if isinstance(value, str):
        return colour(value) if _COLOUR.fullmatch(value) else symbol(value)
    if isinstance(value, Mapping):
        return _property_list(value.items(), order)
    if isinstance(value, numbers.Integral):
        return integer(value)
    if isinstance(value, numbers.Real):
        return real(value)
    if isinstance(value, (tuple, list)):
        return _sequence(value, order)
    return _pictures.as_value(value, order, "a picture in a list")


def _sequence(value: Any, order: int) -> Value:
    if isinstance(value, tuple) and _whole_numbers(value, 2) is not None:
        return point(value)
    if isinstance(value, tuple) and _whole_numbers(value, 3) is not None:
        return colour(value)
    if value and all(isinstance(item, tuple) and len(item) == 2 and isinstance(item[0], str)
                     for item in value):
        return _property_list(value, order)
    return _native.list_of([tree(item, order) for item in value])


def _property_list(pairs: Any, order: int) -> Value:
    return _native.property_list_of(
        [(symbol(key) if isinstance(key, str) else integer(key), tree(item, order)) for key, item in pairs])


def _places(value: Any) -> list[tuple[Any, Any]]:
    if isinstance(value, Mapping):
        return list(value.items())
    if isinstance(value, str) or not hasattr(value, "__len__"):
        raise Mismatch('colours such as {0: "#000000", 100: "#ffffff"} or a list of them', value)
    items = list(value)
    if items and all(not isinstance(item, str) and len(item) == 2 for item in items):
        return items
    last = max(len(items) - 1, 1)
    return [((200 * i + last) // (2 * last), item) for i, item in enumerate(items)]


def relative_text(kind: str, value: Any) -> str | None:
    """A length, point or region with percentages as calls in texts have it; None for anything else."""
    if kind in ("integer", "real"):
        return value if isinstance(value, str) and _PERCENTAGE.fullmatch(value) else None
    maker, count = {"point": ("point", 2), "region": ("rect", 4)}.get(kind, ("", -1))
    if not isinstance(value, (tuple, list)) or len(value) != count or not any(isinstance(part, str) for part in value):
        return None
    if all(_PERCENTAGE.fullmatch(str(part)) or _whole_numbers([part], 1) for part in value):
        return f"{maker}({', '.join(map(str, value))})"
    return None


def _whole_numbers(value: Any, count: int) -> list[int] | None:
    """The numbers of a sequence of `count`; None for anything else."""
    if isinstance(value, (str, bytes)) or not hasattr(value, "__len__") or len(value) != count:
        return None
    try:
        return [operator.index(item) for item in value]
    except TypeError:
        return None


CONVERTERS: dict[str, Callable[[Any], Value]] = {
    "integer": integer,
    "real": real,
    "symbol": symbol,
    "colour": colour,
    "point": point,
    "region": region,
    "colours": colours,
}
"""By kind; pictures and trees also depend on the order of their channels."""
