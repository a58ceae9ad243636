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


# Colours are those of the notebook, so that a card also fits a dark one.
STYLES = {
    "card": "max-width:61em",
    "title": "margin:0 0 .3em",
    "summary": "margin:0 0 .9em;max-width:45em",
    "pictures": "display:grid;grid-template-columns:repeat(auto-fit,minmax(min(100%,15em),1fr));gap:1em",
    "figure": "margin:0;max-width:480px",
    "picture": "display:block;width:100%;height:auto;margin:0",
    "name": "margin:.4em 0 0;font-size:.9em;opacity:.75",
    "call": "margin:.9em 0 0;padding:0;white-space:pre-wrap;overflow-wrap:anywhere;background:none",
}
CHECKERS = ";background:repeating-conic-gradient(#c8c8c8 0% 25%,#f4f4f4 0% 50%) 0 0/16px 16px"


class Card:
    """An effect before and after, with its call and what it measured; a notebook shows it as HTML."""

    def __init__(self, title: str, summary: str, call: str, pictures: dict[str, Any], measured: list[Any]) -> None:
        self.title = title
        self.summary = summary
        self.call = call
        self.pictures = pictures
        self.measured = measured

    def _repr_html_(self) -> str:
        shown = "".join(_figure(name, picture) for name, picture in self.pictures.items())
        pictures = _element("div", "pictures", shown) if shown else ""
        return _element("div", "card", _element("h4", "title", html.escape(self.title)),
                        _element("p", "summary", html.escape(self.summary)), pictures,
                        _element("pre", "call", html.escape("\n".join([self.call, *map(repr, self.measured)]))))

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
    return Card(effect.name, effect.summary, f"krlimage.{name}({shown})", pictures, _measured_in(after))


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


def _measured_in(result: Any) -> list[Any]:
    """What an effect returns that is no picture."""
    if isinstance(result, tuple) and any(isinstance(item, np.ndarray) for item in result):
        return [item for item in result if not isinstance(item, np.ndarray)]
    return [] if isinstance(result, (np.ndarray, list)) else [result]


def _short(value: Any) -> str:
    if isinstance(value, np.ndarray):
        return "other"
    if isinstance(value, list) and value and isinstance(value[0], np.ndarray):
        return "others"
    return repr(value)


def _element(tag: str, style: str, *content: str) -> str:
    return f'<{tag} style="{STYLES[style]}">{"".join(content)}</{tag}>'


def _figure(name: str, picture: Any) -> str:
    """A small JPEG, or PNG over checkers if it is transparent, which the page itself holds."""
    from PIL import Image

    image = Image.fromarray(picture)
    image.thumbnail((WIDEST, WIDEST))
    is_transparent = image.mode == "RGBA" and image.getextrema()[3][0] < 255
    kind = "png" if is_transparent else "jpeg"
    file = io.BytesIO()
    (image if is_transparent else image.convert("RGB")).save(file, kind)
    style = STYLES["picture"] + (CHECKERS if is_transparent else "")
    address = f"data:image/{kind};base64," + base64.b64encode(file.getvalue()).decode("ascii")
    return _element("figure", "figure", f'<img alt="{html.escape(name)}" style="{style}" src="{address}">',
                    _element("figcaption", "name", html.escape(name)))
