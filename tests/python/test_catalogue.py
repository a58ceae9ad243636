"""The functions and what `krlimage.effects` says of them."""

import inspect
import re
import subprocess
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


def test_types_are_checked(tmp_path):
    good = tmp_path / "good.py"
    good.write_text("import krlimage, numpy\n"
                    "from PIL import Image  # type: ignore[import]\n"
                    "a = numpy.zeros((2, 2, 4), numpy.uint8)\n"
                    "b = krlimage.vignette(a, 'rectangle', blur=160, theColor='#000000', out=a)\n"
                    "b = krlimage.multiColourise(b, {0: '#000000', 100: (1, 2, 3)})\n"
                    "c, colour = krlimage.autoColorDifference(b.data)\n"
                    "c = krlimage.vignette(a, blur='10%', mix=0.5, mask=b, region=(0, '10%', 9, 9), feather=2)\n"
                    "c = krlimage.looks['noir'](c, corners=60)\n"
                    "krlimage.Look(['sepia'], parameters=[krlimage.Parameter('a', '1')]).save('a.krl')\n"
                    "krlimage.run_lingo('', {'a': c}, steps=9).images['b'].shape\n")
    bad = tmp_path / "bad.py"
    bad.write_text("import krlimage, numpy\n"
                   "a = numpy.zeros((2, 2, 4), numpy.uint8)\n"
                   "krlimage.vignette(a, 'round')\n"
                   "krlimage.brightness(a, 'x')\n"
                   "krlimage.brightness(7)\n"
                   "krlimage.vignettes(a)\n"
                   "krlimage.brightness(a).shapes\n"
                   "krlimage.halfSize(a, mix=0.5)\n"
                   "krlimage.vignette(a, blur=0.5)\n")

    def mypy(file):
        done = subprocess.run(["/usr/bin/mypy", "--python-executable", __import__("sys").executable,
                               "--cache-dir", tmp_path / "cache", file], capture_output=True, text=True)
        return done.returncode, done.stdout

    assert mypy(good) == (0, "Success: no issues found in 1 source file\n")
    code, said = mypy(bad)
    assert code == 1 and re.findall(r"bad.py:(\d):", said) == ["3", "4", "5", "6", "7", "8", "9"], said
