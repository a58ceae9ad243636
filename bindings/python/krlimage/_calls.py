"""Calls of the engine: what every function of the package does."""

from __future__ import annotations

import re
import threading
from typing import Any, Literal, Sequence

import numpy as np

from . import _native
from ._catalogue import Effect, effects
from ._errors import failure, wrong
from ._native import Value
from ._pictures import Canvas, Source, as_value, in_form, order_number
from ._types import Array
from ._values import CONVERTERS, Mismatch, tree

_threads = 0
_of_this_thread = threading.local()


def set_threads(count: int) -> None:
    """Sets how many threads share the work of one call; results do not depend on it.

    Parameters
    ----------
    count : int
        1 to 1024, or 0 for one for each processor, which is how the package starts.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.set_threads(1)
    >>> krlimage.set_threads(0)
    """
    global _threads
    if not isinstance(count, int) or not 0 <= count <= _native.MOST_BANDS:
        raise ValueError(f"count: expected 0 to {_native.MOST_BANDS} threads, got {count!r:.200}")
    _threads = count


def get_threads() -> int:
    """The number that `set_threads` has set, 0 for one for each processor."""
    return _threads


def work_on_one_thread() -> None:
    """Calls of the current thread run on it alone from now on, as one of many workers."""
    _of_this_thread.threads = 1


class _Plan:
    """What a call of an effect needs to know, worked out once."""

    def __init__(self, effect: Effect) -> None:
        self.effect = effect
        self.names = [argument.name for argument in effect.arguments]
        self.kinds = [argument.kind for argument in effect.arguments]
        self.converters = [CONVERTERS.get(kind) for kind in self.kinds]
        self.keys = [key for key, _ in effect.results]
        self.rewrites = effect.rewrites_picture or effect.inert and not effect.makes_pictures

    def bands(self) -> int:
        return 1 if self.effect.depends_on_bands else getattr(_of_this_thread, "threads", _threads)

    def values(self, given: Sequence[Any], order: int) -> list[Value | None]:
        """The arguments for the engine; None is left out."""
        made: list[Value | None] = []
        for index, value in enumerate(given):
            try:
                made.append(None if value is None else self._value(index, value, order))
            except Mismatch as mismatch:
                raise wrong(self.effect.name, self.names[index], mismatch.expected, mismatch.got) from None
        return made

    def _value(self, index: int, value: Any, order: int) -> Value:
        convert = self.converters[index]
        if convert is not None:
            return convert(value)
        if self.kinds[index] == "picture":
            return as_value(value, order, f"{self.effect.name}: {self.names[index]}")
        return tree(value, order)


_plans = {name: _Plan(effect) for name, effect in effects.items()}


def run_on(picture: Any, method: str, given: Sequence[Any], out: Any = None, order: str = "RGB") -> Any:
    """Calls an effect on a picture.

    Returns the rewritten picture, what was made or measured, or a tuple of both.
    """
    plan = _plans[method]
    number = order_number(order)
    values = plan.values(given, number)
    if not plan.rewrites:
        source = Source(picture, number)
        return _made(plan, _call(plan, source, values), source, number)
    canvas = Canvas(picture, out, number, "picture")
    made = _made(plan, _call(plan, canvas, values), canvas, number)
    finished = canvas.finish(method)
    return finished if made is None else (finished, made)


def run(method: str, given: Sequence[Any], out: Any = None, order: str = "RGB") -> Any:
    """Calls an effect that works on no picture, or rewrites one of its arguments."""
    plan = _plans[method]
    number = order_number(order)
    values = plan.values(given, number)
    changed = plan.effect.changed_argument
    if changed is None:
        return _made(plan, _call(plan, None, values), None, number)
    canvas = Canvas(given[changed], out, number, f"{method}: {plan.names[changed]}")
    values[changed] = _native.picture(canvas.pixels, canvas.order)
    _call(plan, None, values)
    return canvas.finish(method)


def apply(picture: Any, *calls: str, out: Array | None = None, order: Literal["RGB", "BGR"] = "RGB") -> Array:
    """Runs calls in the notation of the command line, one after another.

    Parameters
    ----------
    picture : array_like
        ``uint8`` of height x width x 4, height x width x 3 or height x width.
    *calls : str
        Such as ``"vignette(#blur: 160)"``, by position or by name.
    out : numpy.ndarray, optional
        Where the result goes, or the picture itself to rewrite it in place.
    order : {"RGB", "BGR"}, default "RGB"
        The order of the channels in all arrays.

    Returns
    -------
    numpy.ndarray
        The rewritten picture; a picture that a call makes takes its place.

    Raises
    ------
    KrlError
        If a call is wrong or fails.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.apply(krlimage.sample(), "colourTemperature(4200.0)", "halfSize").shape
    (320, 480, 4)
    """
    number = order_number(order)
    canvas = Canvas(picture, out, number, "picture")
    pixels = canvas.pixels
    for text in calls:
        pixels = _applied(text, pixels, canvas.order)
    if pixels is canvas.pixels:
        return canvas.finish("apply")
    made = pixels if canvas.order == number else in_form(pixels, canvas.channels, number, "apply")
    if out is not None:
        raise ValueError(f"out: expected no array for the new picture that {', '.join(calls)} makes")
    return made


def _applied(text: str, pixels: Array, order: int) -> Array:
    """`pixels`, rewritten, or the new picture that the call has made."""
    name = _method_of(text)
    plan = _plans.get(name)
    code, message, error, entries = _native.apply(text, pixels, order, plan.bands() if plan else 1)
    if code:
        raise failure(code, message, error, name, plan.names if plan else [])
    made = entries if isinstance(entries, list) else list(entries.values())
    return next((value for value in made if isinstance(value, np.ndarray)), pixels)


_names = {name.lower(): name for name in effects}


def _method_of(text: str) -> str:
    """The name of the method that a call is of, as the catalogue spells it."""
    if not isinstance(text, str):
        raise TypeError(f"calls: expected texts such as 'brightness(40)', got {text!r:.200}")
    name = re.split(r"[\s(]", text.strip(), maxsplit=1)[0]
    return _names.get(name.lower(), _names.get(name.lower().removeprefix("krlimage"), name))


def _call(plan: _Plan, on: Source | Canvas | None, values: list[Value | None]) -> Any:
    """The entries of the result."""
    pixels, order = (on.pixels, on.order) if on else (None, _native.BGRA)
    code, message, text, entries = _native.call(plan.effect.name, pixels, order, values, plan.bands())
    if code:
        raise failure(code, message, text, plan.effect.name, plan.names)
    return entries


def _made(plan: _Plan, entries: Any, on: Source | Canvas | None, order: int) -> Any:
    """What was made or measured: None, a value, or several; pictures in the form of the caller's."""
    def in_callers_form(value: Any) -> Any:
        if not isinstance(value, np.ndarray) or on and on.order == order:
            return value
        return in_form(value, on.channels if on else 4, order, plan.effect.name)

    if isinstance(entries, list):
        return [in_callers_form(picture) for picture in entries]
    values = [in_callers_form(entries[key]) for key in plan.keys if key in entries]
    return values[0] if len(values) == 1 else tuple(values) or None
