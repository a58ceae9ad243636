"""Pictures from everything that is one, and back to the form they came in."""

from __future__ import annotations

from typing import Any, Optional, Tuple

import numpy as np

from . import _native
from ._native import Value
from ._types import Array

EXPECTED = "expected an array of uint8 with the shape (height, width, 4), (height, width, 3) or (height, width)"
MOST_BYTES = 2**31 - 1

Ordered = Tuple[Array, int]
"""An array and the engine's number for the order of its channels."""

Route = Tuple[Ordered, Optional[Ordered]]
"""Pixels that a call works on, and the ones that it reads instead if that is another array."""

ORDERS = {"RGB": _native.RGBA, "BGR": _native.BGRA}


def order_number(order: str) -> int:
    """The engine's number for an order of channels."""
    try:
        return ORDERS[order]
    except (KeyError, TypeError):
        raise ValueError(f'order: expected "RGB" or "BGR", got {order!r:.200}') from None


def as_array(picture: Any, name: str = "picture") -> Array:
    """The array that `picture` is, without a copy where that can be.

    Raises
    ------
    TypeError
        If it is no array of bytes.
    ValueError
        If its shape is that of no picture.
    """
    try:
        array = np.asarray(_plain_image(picture))
    except ValueError:
        raise TypeError(f"{name}: {EXPECTED}, got {type(picture).__name__}") from None
    if array.dtype != np.uint8:
        if array.dtype.kind not in "fiub":
            raise TypeError(f"{name}: {EXPECTED}, got {type(picture).__name__}")
        raise TypeError(f"{name}: {EXPECTED}, got {array.dtype} with the shape {array.shape}")
    _check_shape(array, name)
    return array


def _check_shape(array: Array, name: str) -> None:
    shape = array.shape
    if not (len(shape) == 2 or len(shape) == 3 and shape[2] in (3, 4)):
        raise ValueError(f"{name}: {EXPECTED}, got the shape {shape}")
    if 0 in shape:
        raise ValueError(f"{name}: expected at least one pixel, got the shape {shape}")
    if shape[0] * shape[1] * 4 > MOST_BYTES:
        raise ValueError(f"{name}: expected at most {MOST_BYTES // 4} pixels, got {shape[0]} by {shape[1]}")


def _plain_image(picture: Any) -> Any:
    """Images of Pillow in a mode that an array holds as it is; others as RGBA, 16-bit ones as grey."""
    if not (hasattr(picture, "mode") and hasattr(picture, "convert")):
        return picture
    if picture.mode in ("L", "RGB", "RGBA"):
        return picture
    if picture.mode.startswith("I"):
        return (np.asarray(picture) >> 8).clip(0, 255).astype(np.uint8)
    return picture.convert("RGBA")


def as_target(out: Any, shape: tuple[int, ...]) -> Array:
    """The array to write a result of this shape to."""
    if not isinstance(out, (np.ndarray, memoryview)):
        raise TypeError(f"out: expected an array to write to, got {type(out).__name__}")
    array = as_array(out, "out")
    if array.shape != shape:
        raise ValueError(f"out: expected the shape of the picture, {shape}, got {array.shape}")
    if not array.flags.writeable:
        raise ValueError("out: expected an array that is writable, got a read-only one")
    if min(array.strides) < 0:
        raise ValueError(f"out: expected rows and pixels in ascending order, got the strides {array.strides}")
    return array


def rgba(picture: Any) -> Array:
    """The picture as a new RGBA array: opaque if it has no transparency.

    Parameters
    ----------
    picture : array_like
        ``uint8`` of height x width x 4, height x width x 3 or height x width, or an image of Pillow.

    Returns
    -------
    numpy.ndarray
        ``uint8`` of height x width x 4.

    Examples
    --------
    >>> import krlimage, numpy
    >>> krlimage.rgba(numpy.zeros((2, 3), numpy.uint8))[0, 0]
    array([  0,   0,   0, 255], dtype=uint8)
    """
    made = _native.unpack(as_array(picture), _native.RGBA)
    _native.pack(made, made, _native.RGBA)
    return made


def channels_of(array: Array) -> int:
    """1 for grey, 3, or 4."""
    return array.shape[2] if array.ndim == 3 else 1


class Source:
    """A picture that is only read: `pixels` and `order` for the engine, and how many `channels` it came with."""

    def __init__(self, picture: Any, order: int, name: str = "picture") -> None:
        array = as_array(picture, name)
        self.channels = channels_of(array)
        if _native.is_direct(array):
            self.pixels, self.order = array, order
        else:
            self.pixels, self.order = _native.unpack(array, order), _native.BGRA

    def route(self) -> Route:
        """What a call of the engine works on, and that there is nowhere else to read it from."""
        return (self.pixels, self.order), None


def as_value(picture: Any, order: int, name: str) -> Value:
    """The picture as an argument that is only read."""
    source = Source(picture, order, name)
    return _native.picture(source.pixels, source.order)


class Canvas:
    """A picture that a call rewrites: `pixels` and `order` for the engine before, the caller's form after.

    Where `out` has rows that the engine takes, `pixels` is `out` itself. The first call reads the picture where it
    is if the engine takes that.
    """

    def __init__(self, picture: Any, out: Any, order: int, name: str) -> None:
        source = as_array(picture, name)
        target = None if out is None else as_target(out, source.shape)
        is_direct = _native.is_direct(source)
        self.channels = channels_of(source)
        self._callers_order = order
        self._target: Array | None = None
        self._source = (source, order) if is_direct and out is not picture else None
        self._is_finished = is_direct if target is None else _native.is_direct(target)
        if self._is_finished:
            self.pixels, self.order = _native.new_array(source.shape) if target is None else target, order
            if not is_direct:
                np.copyto(self.pixels, source)
        elif is_direct:
            self.pixels, self.order, self._target = _native.new_array(source.shape), _native.BGRA, target
        else:
            self.pixels, self.order, self._target = _native.unpack(source, order), _native.BGRA, target

    def route(self) -> Route:
        """What the next call works on, and where it reads its pixels if that is another array."""
        source, self._source = self._source, None
        return (self.pixels, self.order), source

    def fill(self) -> Array:
        """`pixels` with the picture in them, for what reads it nowhere else."""
        if self._source is not None:
            source, order = self._source
            self._source = None
            if order == self.order:
                np.copyto(self.pixels, source)
            else:
                self.pixels = _native.unpack(source, order)
        return self.pixels

    def finish(self, method: str) -> Array:
        """The result in the caller's form."""
        if self._is_finished:
            return self.pixels
        return in_form(self.pixels, self.channels, self._callers_order, method, self._target)


def in_form(pixels: Array, channels: int, order: int, method: str, target: Array | None = None) -> Array:
    """Tight BGRA `pixels` as so many channels, in `target`, in place if they have room, or as a new array.

    Raises
    ------
    ValueError
        If so many channels cannot hold transparency or colours that the effect made.
    """
    if channels < 4:
        _require_room(channels, _native.channels_needed(pixels), method)
    if target is None:
        if channels == 4 and order == _native.BGRA:
            return pixels
        shape = pixels.shape[:2] if channels == 1 else (*pixels.shape[:2], channels)
        target = pixels if channels == 4 else _native.new_array(shape)
    _native.pack(pixels, target, order)
    return target


def _require_room(channels: int, needed: int, method: str) -> None:
    if needed == 4:
        raise ValueError(f"{method} made the picture transparent, which an array without alpha cannot hold; "
                         "pass krlimage.rgba(picture)")
    if needed > channels:
        raise ValueError(f"{method} made colours, which a grey array cannot hold; pass krlimage.rgba(picture)")
