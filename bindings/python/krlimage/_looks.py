"""Looks: chains of calls with parameters, in the files that the command line uses."""

from __future__ import annotations

import os
import re
from dataclasses import dataclass
from pathlib import Path, PurePosixPath
from typing import Any, Dict, Iterable, Iterator, Literal, Mapping, Sequence, Tuple, Union

import numpy as np

from . import _native
from ._calls import bands_of_look, look_failure
from ._pictures import Canvas, Source, in_form, order_number
from ._types import Array, Picture
from ._values import tree

_WORD = re.compile("#?[A-Za-z_][A-Za-z_0-9]*|#[0-9a-fA-F]{6}")


@dataclass(frozen=True)
class Parameter:
    """A value that a look leaves open; `value` is taken unless another is given.

    Values and the ends of the sensible range are texts such as ``"80"``, ``"12%"`` or ``"#RGB"``.
    """

    name: str
    value: str
    least: str = ""
    most: str = ""
    meaning: str = ""


class Look:
    """A chain of calls with a title and parameters.

    Parameters
    ----------
    calls : sequence of str
        In the notation of the command line: ``"vignette(transparency: $corners, blur: 30%)"``.
    title, description : str
        What it is called, and what it is like.
    parameters : sequence of Parameter
        Values that calls take as ``$name``.

    Attributes
    ----------
    text : str
        The whole look, as its file has it.
    pictures : tuple of str
        Names of the pictures that its calls take, as in ``image("paper.png")``.

    Raises
    ------
    ValueError
        If a call is wrong.

    Examples
    --------
    >>> import krlimage
    >>> look = krlimage.Look(["colourTemperature(4200.0)", "vignette(transparency: $corners, blur: 30%)"],
    ...                      title="Warm", parameters=[krlimage.Parameter("corners", "110")])
    >>> look(krlimage.sample(), corners=60).shape
    (640, 960, 4)
    >>> print(look.text)
    krlimage look 1
    <BLANKLINE>
    title: Warm
    parameter corners: 110
    <BLANKLINE>
    colourTemperature(4200.0)
    vignette(transparency: $corners, blur: 30%)
    <BLANKLINE>
    """

    text: str
    title: str
    description: str
    calls: Tuple[str, ...]
    parameters: Tuple[Parameter, ...]
    pictures: Tuple[str, ...]

    def __init__(self, calls: Sequence[str], title: str = "Untitled", description: str = "",
                 parameters: Iterable[Parameter] = ()) -> None:
        if isinstance(calls, str):
            raise TypeError(f"calls: expected a list of calls, got {calls!r:.200}")
        rows = [(each.name, each.value, each.least, each.most, each.meaning) for each in parameters]
        self._take(_native.look_text(title, description, rows, list(calls)), None)

    def _take(self, text: str, folder: Path | None) -> None:
        self.title, self.description, self.calls, parameters, self.pictures = _native.look_facts(text)
        self.parameters = tuple(Parameter(*row) for row in parameters)
        self.text = text
        self._folder = folder

    @classmethod
    def parse(cls, text: str) -> Look:
        """The look that a text describes; a mistake is a ValueError with its line."""
        return cls._of(text, None)

    @classmethod
    def load(cls, path: Union[str, "os.PathLike[str]"]) -> Look:
        """The look in a file; pictures that it takes are read beside it."""
        try:
            return cls._of(Path(path).read_text(encoding="utf-8"), Path(path).parent)
        except ValueError as error:
            raise ValueError(f"{os.fspath(path)}: {error}") from None

    @classmethod
    def _of(cls, text: str, folder: Path | None) -> Look:
        look = cls.__new__(cls)
        look._take(text, folder)
        return look

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the file that `load` and the command line read."""
        Path(path).write_text(self.text, encoding="utf-8")

    def __call__(self, picture: Picture, *, out: Array | None = None, order: Literal["RGB", "BGR"] = "RGB",
                 images: Mapping[str, Picture] = {}, **settings: Any) -> Array:
        """Applies the look.

        Parameters
        ----------
        picture : array_like
            ``uint8`` of height x width x 4, height x width x 3 or height x width.
        out : numpy.ndarray, optional
            Where the result goes, or the picture itself to rewrite it in place.
        order : {"RGB", "BGR"}, default "RGB"
            The order of the channels in all arrays.
        images : mapping of str to array_like, optional
            The pictures of `pictures`; those of a loaded look are also found beside its file.
        **settings
            Other values of parameters, such as ``corners=60`` or ``soft="12%"``.

        Raises
        ------
        KrlError
            If a call fails.
        ValueError
            If there is no such parameter or picture, or a call does not take the value.
        """
        number = order_number(order)
        sources = {name: self._picture(name, images, number) for name in self.pictures}
        values = {name: _written(value) for name, value in settings.items()}
        _native.look_check(self.text, values)
        canvas = Canvas(picture, out, number, "picture")
        code, message, error, entries = _native.look_apply(
            self.text, values, {name: source.route()[0] for name, source in sources.items()}, *canvas.route(),
            bands_of_look(self.calls))
        if code:
            raise look_failure(code, message, error)
        made = entries.get("picture")
        if made is None:
            return canvas.finish(self.title)
        if out is not None:
            raise ValueError("out: expected no array for a look that makes a new picture")
        finished: Array = made if canvas.order == number else in_form(made, canvas.channels, number, self.title)
        return finished

    def _picture(self, name: str, images: Mapping[str, Picture], order: int) -> Source:
        if name in images:
            return Source(images[name], order, f"images[{name!r}]")
        if self._folder is None:
            raise ValueError(f"images: expected the picture {name!r}, which the look takes")
        path = PurePosixPath(name)
        if path.is_absolute() or ".." in path.parts:
            raise ValueError(f"{name} is outside the folder of the look, which reads pictures there alone")
        from PIL import Image  # type: ignore[import]

        with Image.open(self._folder / path) as image:
            return Source(np.asarray(image.convert("RGBA")), _native.RGBA, name)

    def __repr__(self) -> str:
        return f"<Look {self.title!r}: {', '.join(self.calls)}>"

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Look) and self.text == other.text

    def __hash__(self) -> int:
        return hash(self.text)


def _written(value: Any) -> str:
    """A value in the notation of calls: names, colours and tuples as everywhere in the package, else a text."""
    if isinstance(value, str) and not _WORD.fullmatch(value):
        return value
    return _native.write(tree(value))


class Looks(Mapping[str, Look]):
    """The looks that come with the package, by name.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.looks["noir"].title
    'Noir'
    >>> dark = krlimage.looks["noir"](krlimage.sample(), corners=220)
    """

    def __init__(self, texts: Dict[str, str]) -> None:
        self._texts = texts

    def __getitem__(self, name: str) -> Look:
        return Look.parse(self._texts[name])

    def __iter__(self) -> Iterator[str]:
        return iter(self._texts)

    def __len__(self) -> int:
        return len(self._texts)

    def __repr__(self) -> str:
        return f"<looks {', '.join(self)}>"


looks = Looks(_native.shipped_looks())
