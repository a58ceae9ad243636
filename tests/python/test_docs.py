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
