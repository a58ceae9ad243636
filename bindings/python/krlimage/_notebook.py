"""Effects as cards in a notebook."""

from __future__ import annotations

import base64
import html
import io
from typing import Any

import numpy as np

from ._catalogue import Argument, Effect, effects
from ._pictures import rgba
from ._samples import sample
from ._types import Picture

WIDEST = 480


class Card:
    """An effect before and after, with its call; a notebook shows it as HTML."""

    def __init__(self, title: str, summary: str, call: str, pictures: dict[str, Any]) -> None:
        self.title = title
        self.summary = summary
        self.call = call
        self.pictures = pictures

    def _repr_html_(self) -> str:
        shown = "".join(
            f'<figure style="margin:0"><img alt="{html.escape(name)}" src="{_data_address(picture)}">'
            f"<figcaption>{html.escape(name)}</figcaption></figure>" for name, picture in self.pictures.items())
        return (f"<h4>{html.escape(self.title)}</h4><p>{html.escape(self.summary)}</p>"
                f'<div style="display:flex;flex-wrap:wrap;gap:1em">{shown}</div>'
                f"<pre>{html.escape(self.call)}</pre>")

    def __repr__(self) -> str:
        return self.call


def show_effect(name: str, picture: Picture | None = None, **arguments: Any) -> Card:
    """An effect before and after, with the call to copy.

    Parameters
    ----------
    name : str
        Of the effect.
    picture : array_like, optional
        What it is shown on; left out, a landscape.
    **arguments
        Of the effect; what is left out takes the value of the example.

    Returns
    -------
    Card
        HTML in a notebook, the call elsewhere.

    Examples
    --------
    >>> import krlimage
    >>> krlimage.show_effect("vignette", blur=160)
    krlimage.vignette(picture, blur=160)
    """
    effect = effects.get(name)
    if effect is None:
        raise ValueError(f"name: expected an effect of krlimage.effects, got {name!r:.200}")
    before = rgba(sample() if picture is None else picture)
    given = {**_second_pictures(effect, before), **arguments}
    takes_picture = "picture" in effect.function.__annotations__
    after = effect.function(*([before] if takes_picture else []), **given)
    shown = ", ".join([*(["picture"] if takes_picture else []),
                       *(f"{key}={_short(value)}" for key, value in given.items())])
    pictures = {"before": before, **_pictures_in(after)} if takes_picture else _pictures_in(after)
    return Card(effect.name, effect.summary, f"krlimage.{name}({shown})", pictures)


def _second_pictures(effect: Effect, picture: Any) -> dict[str, Any]:
    """Pictures of the samples in the size of the picture, for arguments that need one."""
    def fitting(argument: Argument) -> Any:
        from PIL import Image  # type: ignore[import]

        second = Image.fromarray(sample(argument.example.partition(".")[0]))
        return np.asarray(second.resize((picture.shape[1], picture.shape[0])))

    given: dict[str, Any] = {}
    for argument in effect.arguments:
        if argument.kind == "picture":
            given[argument.name] = fitting(argument)
        elif argument.kind == "tree" and isinstance(argument.example, list) and isinstance(argument.example[0], str):
            given[argument.name] = [picture] * len(argument.example)
    return given


def _pictures_in(result: Any) -> dict[str, Any]:
    """The pictures of a result by what to call them."""
    if isinstance(result, np.ndarray):
        return {"after": result}
    if isinstance(result, (list, tuple)):
        found = [item for item in result if isinstance(item, np.ndarray) and item.ndim == 3]
        return {f"after {i + 1}" if len(found) > 1 else "after": item for i, item in enumerate(found)}
    return {}


def _short(value: Any) -> str:
    if isinstance(value, np.ndarray):
        return "other"
    if isinstance(value, list) and value and isinstance(value[0], np.ndarray):
        return "others"
    return repr(value)


def _data_address(picture: Any) -> str:
    """A small JPEG, or PNG if it is transparent, as an address that a page can hold."""
    from PIL import Image

    image = Image.fromarray(picture)
    image.thumbnail((WIDEST, WIDEST))
    kind = "png" if image.mode == "RGBA" and image.getextrema()[3][0] < 255 else "jpeg"
    file = io.BytesIO()
    (image if kind == "png" else image.convert("RGB")).save(file, kind)
    return f"data:image/{kind};base64," + base64.b64encode(file.getvalue()).decode("ascii")
