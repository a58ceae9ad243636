"""The catalogue of effects as Python sees it."""

from __future__ import annotations

import math
from dataclasses import dataclass
from typing import Any, Callable, Iterator, Mapping, Optional, Tuple

from . import _native


@dataclass(frozen=True)
class Argument:
    """One argument of an effect.

    Attributes
    ----------
    name, meaning : str
        What it is called, and what it means, in words.
    kind : str
        ``"integer"``, ``"real"``, ``"symbol"``, ``"colour"``, ``"point"``, ``"colours"``, ``"picture"`` or
        ``"tree"``, a structure that `meaning` describes.
    notation : str
        The value of the effect's example in the notation of the command line.
    example : object
        The same in Python; points are for a picture of 960 by 640.
    range : tuple of float
        Of numbers: a range that is sensible to try.
    limits : tuple of float
        Of numbers: values beyond these count as these; infinite where there is none.
    neutral : float
        Of numbers: where the effect changes nothing; NaN where there is no such value.
    choices : tuple of str
        Of symbols: those that the argument takes.
    is_length : bool
        Whether it is in pixels, and also takes a percentage of the picture's shorter side.
    """

    name: str
    meaning: str
    kind: str
    notation: str
    example: Any
    range: Tuple[float, float]
    limits: Tuple[float, float]
    neutral: float
    choices: Tuple[str, ...]
    is_length: bool

    @property
    def has_neutral(self) -> bool:
        """Whether there is a value at which the effect changes nothing."""
        return not math.isnan(self.neutral)


@dataclass(frozen=True)
class Effect:
    """A method of the engine that `krlimage` has as a function.

    Attributes
    ----------
    name, script_name : str
        Such as ``"brightness"``, and ``"krlImageBrightness"`` for Lingo.
    summary : str
        One sentence.
    family, heading : str
        Where it belongs, such as ``"tone"`` and ``"Tone"``.
    arguments : tuple of Argument
        In order.
    results : tuple of (str, str)
        What it measures or makes besides the rewritten picture: key and meaning.
    rewrites_picture, makes_pictures, depends_on_bands, inert : bool
        Whether it rewrites the picture it is called on; makes new pictures; is always run on one band, so
        that its result is the same on every machine; checks its arguments and does nothing else.
    changed_argument : int or None
        The argument that is rewritten in place of the picture.
    """

    name: str
    script_name: str
    summary: str
    family: str
    heading: str
    arguments: Tuple[Argument, ...]
    results: Tuple[Tuple[str, str], ...]
    rewrites_picture: bool
    makes_pictures: bool
    depends_on_bands: bool
    inert: bool
    changed_argument: Optional[int]

    @property
    def function(self) -> Callable[..., Any]:
        """The function of the package, such as `krlimage.brightness`."""
        import krlimage

        found: Callable[..., Any] = getattr(krlimage, self.name)
        return found


class Effects(Mapping[str, Effect]):
    """Every effect by its name, in reading order.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.effects["vignette"].arguments[0].choices
    ('ellipse', 'rectangle')
    >>> [name for name, effect in krlimage.effects.items() if effect.family == "edges"][:2]
    ['cannyEdgeDetect', 'dilation']
    """

    def __init__(self, effects: Iterator[Effect]) -> None:
        self._effects = {effect.name: effect for effect in effects}

    def __getitem__(self, name: str) -> Effect:
        return self._effects[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._effects)

    def __len__(self) -> int:
        return len(self._effects)

    def __repr__(self) -> str:
        return f"<{len(self)} effects, from {next(iter(self))} on>"


def _changed_argument(method: Mapping[str, Any], arguments: Tuple[Argument, ...]) -> Optional[int]:
    if not method["flags"] & _native.CHANGES_SECOND_PICTURE:
        return None
    return next(i for i, argument in enumerate(arguments) if argument.kind == "picture")


def _effect(family: str, heading: str, method: Mapping[str, Any]) -> Effect:
    flags = method["flags"]
    arguments = tuple(Argument(**argument) for argument in method["arguments"])
    return Effect(
        name=method["name"],
        script_name=method["script_name"],
        summary=method["summary"],
        family=family,
        heading=heading,
        arguments=arguments,
        results=method["results"],
        rewrites_picture=bool(flags & _native.REWRITES_PICTURE),
        makes_pictures=bool(flags & (_native.MAKES_PICTURE | _native.MAKES_PICTURE_LIST)),
        depends_on_bands=bool(flags & _native.DEPENDS_ON_BANDS),
        inert=bool(flags & _native.INERT),
        changed_argument=_changed_argument(method, arguments),
    )


def _callable_effects() -> Iterator[Effect]:
    for family, heading, methods in _native.catalogue():
        for method in methods:
            if not method["flags"] & _native.MANAGES_ENGINE:
                yield _effect(family, heading, method)


effects = Effects(_callable_effects())
