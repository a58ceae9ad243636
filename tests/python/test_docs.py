"""docs/python.md, line by line."""

import doctest
import re

import pytest
from conftest import TREE

PAGE = TREE / "docs/python.md"


def blocks():
    """The page's Python, each block with its first line's number."""
    text = PAGE.read_text()
    for found in re.finditer(r"^```python\n(.*?)^```$", text, re.M | re.S):
        yield text.count("\n", 0, found.start()) + 1, found[1]


def test_every_line_of_the_page_does_what_it_says(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    names = {}
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    examples = 0
    for line, block in blocks():
        test = doctest.DocTestParser().get_doctest(block, names, PAGE.name, str(PAGE), line)
        assert test.examples, f"line {line}: nothing to run"
        examples += len(test.examples)
        said = []
        runner.run(test, out=said.append, clear_globs=False)
        names.update(test.globs)
        assert not said, "".join(said)
    assert examples > 30


@pytest.mark.parametrize("name", re.findall(r"krlimage\.(\w+)", PAGE.read_text()))
def test_every_name_of_the_page_exists(name):
    import krlimage

    assert hasattr(krlimage, name)


def flare_keys():
    """The keys of each element of a flare, as the page has them."""
    table = re.search(r"^\| Element \| Keys \|\n.*?\n((?:\|.*\n)+)", PAGE.read_text(), re.M)[1]
    shared = ["origin", "brightness", "transparency", "colourList", "blendMethod"]
    for row in table.splitlines():
        elements, keys = (re.findall(r"`(\w+)`", cell) for cell in row.strip("|").split("|"))
        yield from ((element, shared + keys) for element in elements)


@pytest.mark.parametrize("element, keys", flare_keys())
def test_the_keys_of_a_flare_are_those_that_the_engine_reads(element, keys, picture):
    import krlimage

    values = {"origin": (30, 20), "handle": (5, 5), "colourList": {0: "#ffe1b4"}, "blendMethod": "screen"}
    settings = {key: values.get(key, 1) for key in keys}
    krlimage.lensFlare(picture, [(element, settings)])
    for key in keys:
        with pytest.raises(krlimage.KrlError) as caught:
            krlimage.lensFlare(picture, [(element, {name: settings[name] for name in keys if name != key})])
        assert caught.value.text.startswith("Invalid "), key
