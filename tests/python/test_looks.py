"""Looks in Python: the same files, and the same bytes as call by call."""

import krlimage
import numpy as np
import pytest
from conftest import TREE
from krlimage import Look, Parameter
from PIL import Image

CALLS = ["colourTemperature(4200.0)", "vignette(transparency: $corners, blur: 25%, mix: 0.5)"]


def warm():
    return Look(CALLS, "Warm", "Like an evening.", [Parameter("corners", "110", "0", "255", "how dark")])


def test_a_look_is_its_calls(picture):
    by_hand = krlimage.colourTemperature(picture, 4200.0)
    by_hand = krlimage.vignette(by_hand, transparency=60, blur="25%", mix=0.5)
    np.testing.assert_array_equal(warm()(picture, corners=60), by_hand)
    assert not (warm()(picture) == by_hand).all()
    for form in (picture[..., :3], picture[..., 0]):
        plain = Look(["brightness(40)"])(form)
        np.testing.assert_array_equal(plain, krlimage.brightness(form, 40))
    target = picture.copy()
    assert warm()(target, out=target, corners=60) is target
    np.testing.assert_array_equal(target, by_hand)


def test_it_is_saved_and_loaded(tmp_path):
    warm().save(tmp_path / "warm.krl")
    loaded = Look.load(tmp_path / "warm.krl")
    assert loaded == warm() and hash(loaded) == hash(warm()) and loaded != Look(CALLS[:1])
    assert (loaded.title, loaded.description, loaded.calls) == ("Warm", "Like an evening.", tuple(CALLS))
    assert loaded.parameters == (Parameter("corners", "110", "0", "255", "how dark"),)
    assert repr(loaded).startswith("<Look 'Warm': colourTemperature(4200.0), ")


@pytest.mark.parametrize("path", sorted((TREE / "looks").glob("*.krl")), ids=lambda path: path.stem)
def test_the_shipped_ones_are_those_of_the_folder(path, picture):
    look = krlimage.looks[path.stem]
    assert Look.load(path) == look
    by_hand = picture
    if not look.parameters and not any("$" in call for call in look.calls):
        by_hand = krlimage.apply(picture, *look.calls)
        np.testing.assert_array_equal(look(picture), by_hand)
    assert not (look(picture) == picture).all()


def test_the_bytes_do_not_depend_on_threads(picture):
    look = Look(["noise", "grain"])
    expected = look(picture)
    krlimage.set_threads(3)
    np.testing.assert_array_equal(look(picture), expected)
    krlimage.set_threads(0)


def test_values_are_given_as_everywhere_in_the_package(picture):
    look = Look(["vignette(theColor: $colour, blur: $soft)", "brightness(40, $where)"], parameters=[
        Parameter("colour", "rgb(0, 0, 0)"), Parameter("soft", "30%"), Parameter("where", "#RGB")])
    expected = krlimage.brightness(krlimage.vignette(picture, theColor="#3c1806", blur="10%"), 40, "Alpha")
    for colour in ("#3c1806", (60, 24, 6), "rgb(60, 24, 6)"):
        for where in ("Alpha", "#Alpha"):
            made = look(picture, colour=colour, soft="10%", where=where)
            np.testing.assert_array_equal(made, expected)


def test_pictures_are_given_or_read_beside_the_file(tmp_path, picture):
    look = Look(['composite(image("paper.png"), #screen)'])
    assert look.pictures == ("paper.png",)
    paper = krlimage.rgba(picture[::-1])
    expected = krlimage.composite(picture, paper, "screen")
    np.testing.assert_array_equal(look(picture, images={"paper.png": paper}), expected)
    with pytest.raises(ValueError, match="images: expected the picture 'paper.png'"):
        look(picture)
    look.save(tmp_path / "a.krl")
    Image.fromarray(paper).save(tmp_path / "paper.png")
    np.testing.assert_array_equal(Look.load(tmp_path / "a.krl")(picture), expected)
    for name in ("../paper.png", str(tmp_path / "paper.png")):
        Look([f'composite(image("{name}"))']).save(tmp_path / "b.krl")
        with pytest.raises(ValueError, match="outside the folder of the look"):
            Look.load(tmp_path / "b.krl")(picture)


def test_a_file_saved_here_gives_the_same_bytes_on_the_command_line(tmp_path, picture, command):
    look = Look(["composite(image(\"paper.png\"), #screen, mix: 0.4)", "vignette(transparency: $corners, blur: 25%)",
                 "composite($before, #lighten, region: rect(10%, 0, 50%, 100%), feather: 5%)"],
                "Paper", "Ein Blatt — mit Rand.", [Parameter("corners", "110", "0", "255", "how dark")])
    look.save(tmp_path / "paper.krl")
    Image.fromarray(picture[::-1]).save(tmp_path / "paper.png")
    Image.fromarray(picture).save(tmp_path / "in.png")
    done = command("apply", tmp_path / "in.png", "-o", tmp_path / "out.png", "--look", tmp_path / "paper.krl",
                   "--set", "corners=60")
    assert done.returncode == 0, done.stderr
    made = look(picture, corners=60, images={"paper.png": picture[::-1]})
    assert (made[..., 3] == 255).all() and not (made == picture).all()
    np.testing.assert_array_equal(np.asarray(Image.open(tmp_path / "out.png")), made[..., :3])


def test_a_file_of_the_command_line_is_loaded_here(tmp_path, picture, command):
    done = command("look", "save", tmp_path / "mine.krl", *CALLS, "--title", "Warm", "--parameter",
                   'corners: 110 from 0 to 255 "how dark"')
    assert done.returncode == 0, done.stderr
    loaded = Look.load(tmp_path / "mine.krl")
    assert (loaded.calls, loaded.parameters) == (warm().calls, warm().parameters)
    np.testing.assert_array_equal(loaded(picture), warm()(picture))


def test_a_new_picture_takes_the_place_of_the_old_one(picture):
    look = Look(["halfSize", "invert"])
    made = look(picture)
    np.testing.assert_array_equal(made, krlimage.invert(krlimage.halfSize(picture)))
    np.testing.assert_array_equal(look(picture[..., :3]), made[..., :3])
    with pytest.raises(ValueError, match="out: expected no array"):
        look(picture, out=np.empty_like(picture))


def test_mistakes_are_named(tmp_path, picture):
    with pytest.raises(ValueError, match="^brightness has no argument level"):
        Look(["brightness(level: 4)"])
    with pytest.raises(TypeError, match="calls: expected a list of calls"):
        Look("sepia")
    (tmp_path / "bad.krl").write_text("krlimage look 1\ntitle: A\nsepiaa\n")
    with pytest.raises(ValueError, match=r"bad.krl: line 3: .*sepiaa"):
        Look.load(tmp_path / "bad.krl")
    target = np.zeros_like(picture)
    for settings in ({"corner": 1}, {"corners": "#RGB"}, {"corners": "x y"}):
        with pytest.raises(ValueError, match="corner"):
            warm()(picture, out=target, **settings)
    assert not target.any()
    with pytest.raises(krlimage.KrlError) as caught:
        Look(["sepia", "composite($before, region: rect(0, 0, 4, 4))",
              'composite(image("a"))'])(picture, images={"a": picture[:4]})
    assert caught.value.method == "composite" and caught.value.text


def test_a_batch_takes_a_look(tmp_path, picture):
    Image.fromarray(picture).save(tmp_path / "a.png")
    result = krlimage.batch(tmp_path / "a.png", krlimage.looks["noir"], tmp_path / "out")
    assert result.ok
    np.testing.assert_array_equal(np.asarray(Image.open(tmp_path / "out/a.png")), krlimage.looks["noir"](picture)[..., :3])
