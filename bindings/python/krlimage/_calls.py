"""Calls of the engine: what every function of the package does."""

from __future__ import annotations

import re
import threading
from typing import Any, Callable, Literal, Sequence, Tuple

import numpy as np

from . import _native
from ._catalogue import Effect, effects
from ._errors import KrlError, failure, wrong
from ._native import Value
from ._pictures import Canvas, Ordered, Source, as_array, as_value, in_form, order_number
from ._types import Array
from ._values import CONVERTERS, Mismatch, relative_text, tree

Extent = Tuple[Any, Any, Any, Any]
"""Where and how much an effect changes the picture: mix, mask, region and feather."""

Size = Callable[[], Tuple[int, ...]]
"""Gives height and width of a picture, for percentages."""

EXTENT = {"mix": "real", "mask": "picture", "region": "region", "feather": "integer"}
WHOLE: Extent = (1.0, None, None, 0)

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
        self.keys = [key for key, _ in effect.results]
        self.rewrites = effect.rewrites_picture or effect.inert and not effect.makes_pictures

    def bands(self) -> int:
        return 1 if self.effect.depends_on_bands else getattr(_of_this_thread, "threads", _threads)

    def values(self, given: Sequence[Any], order: int, size: Size) -> list[Value | None]:
        """The arguments for the engine; None is left out, except where a picture has to be."""
        return [None if value is None and kind != "picture" else self._value(name, kind, value, order, size)
                for name, kind, value in zip(self.names, self.kinds, given)]

    def extent(self, given: Extent, order: int, size: Size) -> list[tuple[str, Value]]:
        """The arguments by name for what is not the whole change."""
        return [(name, self._value(name, kind, value, order, size))
                for (name, kind), value, whole in zip(EXTENT.items(), given, WHOLE)
                if value is not whole and (value is None or whole is None or value != whole)]

    def _value(self, name: str, kind: str, value: Any, order: int, size: Size) -> Value:
        convert = CONVERTERS.get(kind)
        try:
            if convert is not None:
                return convert(value)
            if kind == "picture":
                return as_value(value, order, f"{self.effect.name}: {name}")
            return tree(value, order)
        except Mismatch as mismatch:
            text = relative_text(kind, value)
            if text is None:
                raise wrong(self.effect.name, name, mismatch.expected, mismatch.got) from None
        height, width = size()
        try:
            return _native.argument(self.effect.name, name, text, width, height)
        except ValueError as error:
            raise KrlError(f"{self.effect.name}: {name}: {error}", self.effect.name, name,
                           reason="wrong type") from None


_plans = {name: _Plan(effect) for name, effect in effects.items()}


def run_on(picture: Any, method: str, given: Sequence[Any], out: Any = None, order: str = "RGB",
           extent: Extent = WHOLE) -> Any:
    """Calls an effect on a picture.

    Returns the rewritten picture, what was made or measured, or a tuple of both.
    """
    plan = _plans[method]
    number = order_number(order)

    def size() -> Tuple[int, ...]:
        return as_array(picture).shape[:2]

    values = plan.values(given, number, size)
    if not plan.rewrites:
        source = Source(picture, number)
        return _made(plan, _call(plan, source, values), source, number)
    named = plan.extent(extent, number, size)
    canvas = Canvas(picture, out, number, "picture")
    made = _made(plan, _call(plan, canvas, values, named), canvas, number)
    finished = canvas.finish(method)
    return finished if made is None else (finished, made)


def run(method: str, given: Sequence[Any], out: Any = None, order: str = "RGB") -> Any:
    """Calls an effect that works on no picture, or rewrites one of its arguments."""
    plan = _plans[method]
    number = order_number(order)
    changed = plan.effect.changed_argument
    values = plan.values(given, number, lambda: (0, 0) if changed is None else as_array(given[changed]).shape[:2])
    if changed is None:
        return _made(plan, _call(plan, None, values), None, number)
    canvas = Canvas(given[changed], out, number, f"{method}: {plan.names[changed]}")
    values[changed] = _native.picture(canvas.fill(), canvas.order)
    _call(plan, None, values)
    return canvas.finish(method)


def apply(picture: Any, *calls: str, out: Array | None = None, order: Literal["RGB", "BGR"] = "RGB") -> Array:
    """Runs calls in the notation of the command line, one after another.

    Parameters
    ----------
    picture : array_like
        ``uint8`` of height x width x 4, height x width x 3 or height x width.
    *calls : str
        Such as ``"vignette(blur: 160)"``, by position or by name.
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
    if not calls:
        canvas.fill()
    pixels = canvas.pixels
    for text in calls:
        pixels = _applied(text, *(canvas.route() if pixels is canvas.pixels else ((pixels, canvas.order), None)))
    if pixels is canvas.pixels:
        return canvas.finish("apply")
    made = pixels if canvas.order == number else in_form(pixels, canvas.channels, number, "apply")
    if out is not None:
        raise ValueError(f"out: expected no array for the new picture that {', '.join(calls)} makes")
    return made


def _applied(text: str, pixels: Ordered, source: Ordered | None) -> Array:
    """`pixels`, rewritten, or the new picture that the call has made."""
    name = _method_of(text)
    plan = _plans.get(name)
    code, message, error, entries = _native.apply(text, pixels, source, plan.bands() if plan else 1)
    if code:
        raise failure(code, message, error, name, [*plan.names, *EXTENT] if plan else [])
    made = entries if isinstance(entries, list) else list(entries.values())
    return next((value for value in made if isinstance(value, np.ndarray)), pixels[0])


def bands_of_look(calls: Sequence[str]) -> int:
    """The threads for calls that run on one engine: one alone if the result of some depends on their number."""
    used = [_plans.get(_method_of(text)) for text in calls]
    threads: int = getattr(_of_this_thread, "threads", _threads)
    return min(threads, 1) if any(plan and plan.effect.depends_on_bands for plan in used) else threads


def look_failure(code: int, message: str, error: str) -> Exception:
    """The exception for a look of which a call failed."""
    place = re.match(r"line \d+: ", message)
    words = message[place.end():] if place else message
    plan = _plans.get(words.split(": ")[0])
    if plan is None:
        return failure(code, message, error, "", [])
    made = failure(code, words, error, plan.effect.name, [*plan.names, *EXTENT])
    made.args = (message,)
    return made


_names = {name.lower(): name for name in effects}


def _method_of(text: str) -> str:
    """The name of the method that a call is of, as the catalogue spells it."""
    if not isinstance(text, str):
        raise TypeError(f"calls: expected texts such as 'brightness(40)', got {text!r:.200}")
    name = re.split(r"[\s(]", text.strip(), maxsplit=1)[0]
    return _names.get(name.lower(), _names.get(name.lower().removeprefix("krlimage"), name))


def _call(plan: _Plan, on: Source | Canvas | None, values: list[Value | None],
          named: Sequence[tuple[str, Value]] = ()) -> Any:
    """The entries of the result."""
    pixels, source = on.route() if on else (None, None)
    code, message, text, entries = _native.call(plan.effect.name, pixels, source, values, named, plan.bands())
    if code:
        raise failure(code, message, text, plan.effect.name, [*plan.names, *EXTENT])
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
