"""Scripts in Lingo, on pictures in memory."""

from __future__ import annotations

import tempfile
from dataclasses import dataclass
from pathlib import Path
from typing import Dict, Literal, Mapping, Sequence

from . import _native
from ._pictures import as_array, in_form, order_number
from ._types import Array, Picture


class LingoError(ValueError):
    """A script with a mistake, or that failed.

    Attributes
    ----------
    message : str
        What was wrong.
    line, column : int
        Where, from 1; 0 if it is no place in the script.
    excerpt : str
        The line with a caret under the column, or nothing.
    output : str
        What the script printed before.
    """

    def __init__(self, message: str, line: int = 0, column: int = 0, excerpt: str = "", output: str = "") -> None:
        super().__init__(message, line, column, excerpt, output)
        self.message = message
        self.line = line
        self.column = column
        self.excerpt = excerpt
        self.output = output

    def __str__(self) -> str:
        place = f"line {self.line}, column {self.column}: " if self.line else ""
        return place + self.message


LingoError.__module__ = "krlimage"  # as tracebacks name it


@dataclass(frozen=True)
class LingoResult:
    """What a script left.

    Attributes
    ----------
    output, alerts : str
        What it printed with ``put``, and showed with ``alert``.
    images : dict of str to numpy.ndarray
        The pictures that it saved, by name: ``uint8`` of height x width x 4.
    """

    output: str
    alerts: str
    images: Dict[str, Array]


def run_lingo(source: str, images: Mapping[str, Picture] = {}, arguments: Sequence[str] = (), *,
              order: Literal["RGB", "BGR"] = "RGB", steps: int | None = None) -> LingoResult:
    """Runs the handler ``main`` of a script, or its first.

    Parameters
    ----------
    source : str
        The script.
    images : mapping of str to array_like, optional
        Pictures that the script reads with ``image("name")``; they stay as they are.
    arguments : sequence of str, optional
        What the handler gets, as a list.
    order : {"RGB", "BGR"}, default "RGB"
        The order of the channels in all arrays.
    steps : int, optional
        A limit of statements and turns of loops, for scripts that might not end.

    Returns
    -------
    LingoResult
        What the script printed and the pictures that it saved.

    Raises
    ------
    LingoError
        If the script has a mistake or fails.

    Notes
    -----
    The script cannot reach any file of yours.

    Examples
    --------
    >>> import krlimage
    >>> result = krlimage.run_lingo('''
    ... on main
    ...   picture = image("before")
    ...   grader = new(xtra "KRLImageXtra")
    ...   grader.krlImageCreateLookupTables(#mt)
    ...   grader.krlImageLoad(picture)
    ...   put grader.krlImageBrightness(40, #RGB)
    ...   grader.krlImageQuit()
    ...   grader.krlImageDestroyLookupTables()
    ...   picture.save("after")
    ... end
    ... ''', {"before": krlimage.sample()})
    >>> result.output
    '-- [#error: 0]\\n'
    >>> result.images["after"].shape
    (640, 960, 4)
    """
    number = order_number(order)
    given = {name: _native.unpack(as_array(picture, f"images[{name!r}]"), number)
             for name, picture in images.items()}
    with tempfile.TemporaryDirectory(prefix="krlimage-") as folder:
        script = Path(folder) / "script.ls"
        script.write_text(source, encoding="utf-8")
        output, alerts, pictures, error = _native.run_lingo(str(script), [str(word) for word in arguments], given,
                                                               steps)
    if error:
        raise LingoError(*error, output)
    return LingoResult(output, alerts, {name: in_form(picture, 4, number, "run_lingo")
                                        for name, picture in pictures.items()})
