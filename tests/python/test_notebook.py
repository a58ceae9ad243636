"""Cards, and the notebook of the examples."""

import importlib.util
import json
import os
import subprocess
import sys
from pathlib import Path

import krlimage
import pytest
from conftest import TREE

NOTEBOOK = TREE / "examples/python/effects.ipynb"


@pytest.mark.parametrize("name", krlimage.effects)
def test_every_effect_has_a_card(name, picture):
    card = krlimage.show_effect(name, picture)
    page = card._repr_html_()
    assert repr(card).startswith(f"krlimage.{name}(")
    assert krlimage.effects[name].summary.split("'")[0] in page
    if krlimage.effects[name].rewrites_picture:
        assert page.count('src="data:image/') == 2 and ">before<" in page and ">after<" in page


def test_a_card_shows_the_call_to_copy(picture):
    assert repr(krlimage.show_effect("brightness", picture, brightnessInt=10)) == (
        "krlimage.brightness(picture, brightnessInt=10)")
    assert "other" in repr(krlimage.show_effect("composite"))
    with pytest.raises(ValueError, match="expected an effect of krlimage.effects, got 'nothing'"):
        krlimage.show_effect("nothing")


def test_a_card_shows_what_was_measured(picture):
    assert repr((0.0, 1.0, 1.0)) in krlimage.show_effect("RGBtoHSV", pColor="#ff0000")._repr_html_()
    green = krlimage.show_effect("autoColorDifference", krlimage.sample("greenscreen"))._repr_html_()
    assert "\n&#x27;green&#x27;</pre>" in green
    assert krlimage.show_effect("sepia", picture).measured == []
    assert krlimage.show_effect("broadcastSplit", picture).measured == []


def test_a_card_fits_the_page_and_lays_transparent_pictures_on_checkers():
    opaque = krlimage.show_effect("sepia")._repr_html_()
    assert opaque.count("width:100%;height:auto") == 2 and "conic-gradient" not in opaque
    keyed = krlimage.show_effect("chromaKey", krlimage.sample("greenscreen"))._repr_html_()
    assert keyed.count("conic-gradient") == 1 and keyed.index("conic-gradient") > keyed.index(">before<")


def cells():
    return [cell for cell in json.loads(NOTEBOOK.read_text())["cells"] if cell["cell_type"] == "code"]


def test_the_notebook_has_its_output():
    assert all(cell["outputs"] for cell in cells() if not "".join(cell["source"]).startswith("import"))
    assert not any(output["output_type"] == "error" for cell in cells() for output in cell["outputs"])


def said(notebook):
    """The outputs of a notebook as texts; the bytes of their pictures depend on the version of Pillow."""
    return [(output["output_type"], output.get("text"), output.get("data", {}).get("text/plain"), sorted(output.get("data", {})))
            for cell in notebook["cells"] for output in cell.get("outputs", [])]


def test_the_notebook_runs_and_says_the_same(tmp_path):
    if importlib.util.find_spec("nbconvert") and importlib.util.find_spec("ipykernel"):
        # The kernel is the system's; it finds the package where this interpreter has it.
        environment = {**os.environ, "PYTHONPATH": str(Path(krlimage.__file__).parents[1])}
        subprocess.run([sys.executable, "-m", "nbconvert", "--to", "notebook", "--execute", NOTEBOOK,
                        "--output-dir", tmp_path], check=True, cwd=tmp_path, env=environment, timeout=300)
        made = json.loads((tmp_path / NOTEBOOK.name).read_text())
        assert said(made) == said(json.loads(NOTEBOOK.read_text()))
    else:
        subprocess.run([sys.executable, "-c", "\n".join("".join(cell["source"]) for cell in cells())], check=True,
                       cwd=tmp_path, timeout=300)
