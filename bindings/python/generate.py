"""Writes the functions of the package from the catalogue of its extension module.

    python generate.py PACKAGE_FOLDER

The folder holds the package with its extension module built; it gets `_effects.py`.
"""

from __future__ import annotations

import keyword
import math
import pprint
import sys
import textwrap
import types
from pathlib import Path

WIDTH = 110
TYPES = {
    "integer": "int",
    "real": "float",
    "colour": "Colour",
    "point": "Optional[Point]",
    "colours": "Colours",
    "picture": "Picture",
    "tree": "Optional[Tree]",
}
DOCUMENTED_TYPES = {
    "integer": "int",
    "real": "float",
    "colour": "str or tuple of int",
    "point": "tuple of int, optional",
    "colours": "dict or sequence",
    "picture": "array_like",
    "tree": "dict or list",
}
RESERVED = {"picture", "out", "order", "mix", "mask", "region", "feather"}
# What every function takes that rewrites the picture it is called on.
EXTENT = (
    ("mix: float = 1.0", "mix : float, default 1.0", "Share of the change, 0.0 to 1.0."),
    ("mask: Optional[Picture] = None", "mask : array_like, optional",
     "A picture of the same size: its brightness is the share of the change there."),
    ("region: Optional[Region] = None", "region : tuple, optional",
     "Left, top, right and bottom, in pixels or as percentages: nothing outside changes."),
    ("feather: Length = 0", "feather : int or str, default 0",
     "A length inside the region's border over which the change grows to full."),
)

HEADER = '''"""The effects as functions.

Generated from the catalogue when the package is built.
"""

# mypy: disable-error-code=no-any-return

from __future__ import annotations

from typing import Any, Dict, List, Literal, Optional, Tuple

from ._calls import run, run_on
from ._types import Array, Colour, Colours, Length, Picture, Point, RealLength, Region, Tree, Truth

Order = Literal["RGB", "BGR"]

'''


def python_name(argument):
    name = argument.name
    return name + "_" if keyword.iskeyword(name) or name in RESERVED else name


def colour_text(levels):
    return "#{:02x}{:02x}{:02x}".format(*levels)


def holds_picture(example):
    """Whether an example of a tree is made of pictures, which only the caller has."""
    return isinstance(example, list) and all(isinstance(item, str) for item in example)


def is_truth(argument):
    return set(argument.choices) == {"false", "true"}


def python_value(argument):
    """The example as a value that the function takes."""
    if is_truth(argument):
        return argument.example == "true"
    if argument.kind == "colour":
        return colour_text(argument.example)
    if argument.kind == "colours":
        return {place: colour_text(colour) for place, colour in argument.example.items()}
    return argument.example


def literal(value):
    """The value as source text; no name in the catalogue has quotes in it."""
    return repr(value).replace("'", '"')


def is_required(argument):
    return argument.kind == "picture" or argument.kind == "tree" and holds_picture(argument.example)


def default_of(argument):
    """Points and trees depend on the size of the picture: left out, they fit it."""
    return "None" if argument.kind in ("point", "tree") else literal(python_value(argument))


def type_of(argument):
    if is_truth(argument):
        return "Truth"
    if argument.kind == "symbol" and argument.choices:
        return "Literal[{}]".format(", ".join(f'"{choice}"' for choice in argument.choices))
    if is_required(argument):
        return TYPES[argument.kind].replace("Optional[Tree]", "Tree")
    if argument.is_length:
        return "Length" if argument.kind == "integer" else "RealLength"
    return TYPES.get(argument.kind, "str")


class Function:
    """The source of one function."""

    def __init__(self, effect, needs_picture):
        self.effect = effect
        self.changed = effect.changed_argument
        self.takes_picture = self.changed is None and (needs_picture or effect.inert)
        self.returns_picture = self.changed is not None or effect.rewrites_picture or (
            effect.inert and not effect.makes_pictures)
        self.takes_extent = self.takes_picture and effect.rewrites_picture
        self.has_pictures = self.takes_picture or effect.makes_pictures or any(
            is_required(argument) for argument in effect.arguments)

    def source(self):
        name = self.effect.name
        given = "".join(python_name(argument) + ", " for argument in self.effect.arguments).rstrip()
        out = "out" if self.returns_picture else "None"
        order = ", order" if self.has_pictures else ""
        values = textwrap.fill(f"given = ({given})", WIDTH - 4, subsequent_indent=" " * 9,
                               break_on_hyphens=False)
        start = f'run_on(picture, "{name}"' if self.takes_picture else f'run("{name}"'
        extent = ", (mix, mask, region, feather)" if self.takes_extent else ""
        call = f"return {start}, given, {out}{order}{extent})"
        body = textwrap.indent(f"{self.docstring()}\n{values}\n{call}\n", "    ")
        return f"{self.head()}\n{body}"

    def head(self):
        lines = ["picture: Picture"] if self.takes_picture else []
        by_keyword = has_default = False
        for argument in self.effect.arguments:
            required = is_required(argument)
            if required and has_default and not by_keyword:
                lines.append("*")
                by_keyword = True
            has_default |= not required
            default = "" if required else f" = {default_of(argument)}"
            lines.append(f"{python_name(argument)}: {type_of(argument)}{default}")
        if self.has_pictures and not by_keyword:
            lines.append("*")
        if self.returns_picture:
            lines.append("out: Optional[Array] = None")
        if self.has_pictures:
            lines.append('order: Order = "RGB"')
        if self.takes_extent:
            lines += [line for line, _, _ in EXTENT]
        parameters = "".join(f"    {line},\n" for line in lines)
        return f"def {self.effect.name}(\n{parameters}) -> {self.result_type()}:"

    def result_type(self):
        made = self.made_type()
        if not self.returns_picture:
            return made
        return f"Tuple[Array, {made}]" if self.effect.results else "Array"

    def made_type(self):
        if not self.effect.results:
            return "List[Array]"
        if self.effect.makes_pictures:
            return "Array"
        return "Any"

    def docstring(self):
        sections = [self.effect.summary, self.parameters(), self.returns(), self.raises(), self.notes(),
                    self.examples()]
        text = "\n\n".join(section for section in sections if section)
        return f'r"""{text}\n"""'

    def section(self, title, body):
        return f"{title}\n{'-' * len(title)}\n{body}" if body else ""

    def entry(self, head, *sentences):
        text = " ".join(sentence for sentence in sentences if sentence)
        return head + "\n" + textwrap.fill(text, WIDTH - 4, initial_indent="    ", subsequent_indent="    ")

    def parameters(self):
        entries = []
        if self.takes_picture:
            entries.append(self.entry(
                "picture : array_like",
                "``uint8`` of height x width x 4, height x width x 3 or height x width; numpy, Pillow, or "
                "anything else that numpy takes without a copy."))
        entries += [self.parameter(argument) for argument in self.effect.arguments]
        if self.returns_picture:
            entries.append(self.entry(
                "out : numpy.ndarray, optional",
                "Where the result goes: an array of the picture's shape, or the picture itself to rewrite it "
                "in place."))
        if self.has_pictures:
            entries.append(self.entry('order : {"RGB", "BGR"}, default "RGB"',
                                      "The order of the channels in all arrays of the call."))
        if self.takes_extent:
            entries += [self.entry(head, text) for _, head, text in EXTENT]
        return self.section("Parameters", "\n".join(entries))

    def parameter(self, argument):
        kind = DOCUMENTED_TYPES.get(argument.kind, "str") + (" or str" if argument.is_length else "")
        if is_truth(argument):
            kind = "bool"
        elif argument.kind == "symbol" and argument.choices:
            kind = "{" + ", ".join(f'"{choice}"' for choice in argument.choices) + "}"
        default = default_of(argument)
        head = f"{python_name(argument)} : {kind}"
        if not is_required(argument) and default != "None" and argument.kind != "colours":
            head += f", default {default}"
        return self.entry(head, sentence(argument.meaning), number_sentence(argument),
                          kind_sentence(argument))

    def returns(self):
        entries = []
        if self.returns_picture:
            entries.append(self.entry("numpy.ndarray", "The rewritten picture, in the form of "
                                      + ("`picture`." if self.takes_picture else "the first picture.")))
        for key, meaning in self.effect.results:
            entries.append(self.entry(key, sentence(meaning)))
        if not entries:
            entries.append(self.entry("list of numpy.ndarray", "The new pictures."))
        return self.section("Returns", "\n".join(entries))

    def raises(self):
        return self.section("Raises", self.entry(
            "KrlError", "If an argument is of the wrong type or none of the choices, or if the effect fails."))

    def notes(self):
        effect = self.effect
        lines = [f"{effect.heading}; ``{effect.script_name}`` in Lingo."]
        if effect.inert:
            lines.append("It checks its arguments and changes nothing.")
        if effect.depends_on_bands:
            lines.append("Its definition contains the number of threads: it always runs on one.")
        return self.section("Notes", textwrap.fill(" ".join(lines), WIDTH - 4))

    def examples(self):
        effect = self.effect
        lines = [">>> import krlimage"]
        if self.takes_picture or any(holds_picture(argument.example) for argument in effect.arguments):
            lines.append('>>> picture = krlimage.sample("landscape")')
        given = ["picture"] if self.takes_picture else []
        given += [f"{python_name(argument)}={example_text(argument)}" for argument in effect.arguments]
        lines += example_call(effect.name, given)
        return self.section("Examples", "\n".join(lines))


def sentence(text):
    return text[:1].upper() + text[1:] + "." if text else ""


def number_text(value, kind):
    return str(int(value)) if kind == "integer" else repr(value)


def number_sentence(argument):
    if argument.kind not in ("integer", "real"):
        return ""
    low, high = (number_text(value, argument.kind) for value in argument.range)
    text = f"Try {low} to {high}."
    least, most = argument.limits
    if math.isfinite(least) and math.isfinite(most):
        text += f" Limited to {number_text(least, argument.kind)} to {number_text(most, argument.kind)}."
    elif math.isfinite(least):
        text += f" At least {number_text(least, argument.kind)}."
    elif math.isfinite(most):
        text += f" At most {number_text(most, argument.kind)}."
    if argument.has_neutral:
        text += f" {number_text(argument.neutral, argument.kind)} changes nothing."
    return text


def kind_sentence(argument):
    if argument.is_length:
        return "A length, in pixels or in percent of the picture's shorter side, such as ``\"10%\"``."
    if argument.kind == "colour":
        return "A colour is ``\"#rrggbb\"`` or red, green and blue."
    if argument.kind == "point":
        return "x and y in pixels or in percent, such as ``(\"50%\", \"40%\")``; left out, it fits the size of the picture."
    if argument.kind == "colours":
        return ("A dict of colours under numbers from 0 to 100, a list of such pairs, or a list of colours "
                f"that are spread evenly; the example's are ``{literal(python_value(argument))}``.")
    if argument.kind == "tree" and not is_required(argument):
        return "Names are strings, points are tuples; left out, it is the example below."
    return ""


def example_text(argument):
    if argument.kind == "picture":
        return 'krlimage.sample("{}")'.format(argument.example.partition(".")[0])
    if holds_picture(argument.example):
        return "[{}]".format(", ".join(["picture"] * len(argument.example)))
    if argument.kind == "tree":
        return pprint.pformat(argument.example, width=80, sort_dicts=False).replace("'", '"')
    return literal(python_value(argument))


def example_call(name, given):
    """A call in the form of a doctest, a line for each argument if one line is too short."""
    one = f">>> result = krlimage.{name}({', '.join(given)})"
    if len(one) <= WIDTH - 8 and "\n" not in one:
        return [one]
    lines = [f">>> result = krlimage.{name}("]
    for argument in given:
        lines += ["...     " + line for line in (argument + ",").splitlines()]
    return lines + ["... )"]


def needs_picture(native, effect, blank):
    """Whether the effect fails without a picture, its other arguments being those of the example."""
    given = []
    for argument in effect.arguments:
        if argument.kind == "picture":
            given.append(blank)
        elif argument.kind == "tree" and holds_picture(argument.example):
            given.append(native.list_of([blank] * len(argument.example)))
        else:
            given.append(None)
    return native.call(effect.name, None, None, given, [], 1)[0] != 0


def write_effects(package):
    # The package itself cannot be imported before it has its functions.
    bare = types.ModuleType("krlimage")
    bare.__path__ = [str(package)]
    sys.modules["krlimage"] = bare
    import numpy
    from krlimage import _catalogue, _native

    blank = _native.picture(numpy.zeros((64, 96, 4), numpy.uint8), _native.BGRA)
    functions = [Function(effect, needs_picture(_native, effect, blank))
                 for effect in _catalogue.effects.values()]
    names = "".join(f'    "{function.effect.name}",\n' for function in functions)
    parts = [function.source() for function in functions]
    text = HEADER + f"__all__ = [\n{names}]\n\n\n" + "\n\n".join(parts)
    (package / "_effects.py").write_text(text, encoding="utf-8")


if __name__ == "__main__":
    write_effects(Path(sys.argv[1]).resolve())
