"""The functions and what `krlimage.effects` says of them."""

import inspect
import re
import typing

import krlimage
import pytest
from conftest import TREE


def test_every_method_of_the_reference_that_can_be_called_is_a_function():
    reference = (TREE / "docs/methods.md").read_text()
    documented = set(re.findall(r"^### (\w+)$", reference, re.M))
    engine = set(re.findall(r"\(#(\w+)\)", re.search(r"^- \[Engine\].*$", reference, re.M)[0]))
    expected = {name for name in documented if name.lower() not in engine}
    assert set(krlimage.effects) == expected
    assert expected <= set(krlimage.__all__)


@pytest.mark.parametrize("effect", krlimage.effects.values(), ids=lambda effect: effect.name)
def test_a_function_has_the_parameters_of_its_effect(effect):
    signature = inspect.signature(effect.function)
    names = [name for name in signature.parameters if name not in ("picture", "out", "order")]
    extent = ["mix", "mask", "region", "feather"] if effect.rewrites_picture else []
    assert names == [argument.name for argument in effect.arguments] + extent
    documentation = inspect.getdoc(effect.function)
    assert documentation.startswith(effect.summary)
    for argument in effect.arguments:
        assert re.search(rf"^{argument.name} : ", documentation, re.M)
        if argument.kind == "symbol":
            hint = typing.get_type_hints(effect.function)[argument.name]
            if set(argument.choices) == {"false", "true"}:
                assert typing.get_args(hint) == (bool, typing.Literal["false", "true"])
            else:
                assert typing.get_args(hint) == argument.choices
    for section in ("Returns", "Raises", "Notes", "Examples"):
        assert f"{section}\n{'-' * len(section)}\n" in documentation


def test_effects_are_a_mapping():
    assert krlimage.effects["vignette"].family == "stylise"
    assert "nothing" not in krlimage.effects
    assert list(krlimage.effects)[0] == "brightness" and len(krlimage.effects) == len(list(krlimage.effects))
    brightness = krlimage.effects["brightness"]
    assert brightness.arguments[0].range == (-255, 255) and brightness.arguments[0].neutral == 0
    assert brightness.script_name == "krlImageBrightness" and brightness.rewrites_picture
    assert krlimage.effects["noise"].depends_on_bands and krlimage.effects["reinterlace"].changed_argument == 0


def test_the_version_is_that_of_the_tree():
    assert f"project(krlimage VERSION {krlimage.__version__} " in (TREE / "CMakeLists.txt").read_text()
