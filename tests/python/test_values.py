"""Arguments in Python's types, and how wrong ones are reported."""

import pickle

import krlimage
import numpy as np
import pytest


def same(*made):
    for other in made[1:]:
        np.testing.assert_array_equal(other, made[0])


def test_colours_are_text_or_levels(picture):
    same(*(krlimage.drawCheckerBox(picture, 4, one, "#102030")
           for one in ("#ff8001", "#FF8001", (255, 128, 1), [255, 128, 1], np.array([255, 128, 1]))))


def test_numbers_are_of_any_type(picture):
    same(*(krlimage.brightness(picture, levels) for levels in (40, np.int64(40), np.uint8(40))))
    same(*(krlimage.contrast(picture, factor) for factor in (2.0, 2, np.float64(2), np.float32(2))))


def test_colour_lists_are_dicts_pairs_or_evenly_spread(picture):
    same(*(krlimage.multiColourise(picture, colours) for colours in (
        {0: "#000000", 50: "#ff0000", 100: (255, 255, 255)},
        [(0, "#000000"), (50, "#ff0000"), (100, "#ffffff")],
        ["#000000", (255, 0, 0), "#ffffff"])))


def test_points_are_pairs_and_fit_the_picture_when_left_out(picture):
    same(krlimage.zoomBlur(picture, 9, (32, 24)), krlimage.zoomBlur(picture, 9, [32, 24]), krlimage.zoomBlur(picture, 9))
    assert (krlimage.zoomBlur(picture, 9, (3, 3)) != krlimage.zoomBlur(picture, 9)).any()


def test_names_may_have_their_sign_and_any_case(picture):
    same(*(krlimage.invert(picture, name) for name in ("RGB", "#RGB", "rgb")))


def test_yes_and_no_are_true_and_false(picture):
    same(*(krlimage.vignette(picture, invert=yes) for yes in (True, "true", "#true", np.bool_(True))))
    same(*(krlimage.vignette(picture, invert=no) for no in (False, "false", np.False_)), krlimage.vignette(picture))
    with pytest.raises(krlimage.KrlError, match="vignette: shape: .*true"):
        krlimage.vignette(picture, True)


def test_flares_are_dicts_or_pairs(picture):
    star = {"count": 8, "width": 1, "angle": 11.0, "brightness": 150.0, "radius": 20.0, "origin": (30, 20),
            "transparency": 0, "colourList": {0: "#ffe1b4"}, "blendMethod": "screen"}
    one = krlimage.lensFlare(picture, {"star": star})
    same(one, krlimage.lensFlare(picture, [("star", star)]))
    assert (one != picture).any()
    assert (krlimage.lensFlare(picture, [("star", star), ("star", star)]) != one).any()


def test_bezier_shapes_are_lists_of_dicts(picture):
    shape = [{"vertex": (-190, -190), "handle1": (10, 0), "handle2": (20, 5)},
             {"vertex": (-160, -160), "handle1": (-10, 10), "handle2": (5, -20)}]
    made = krlimage.drawBezierShape(picture, shape)
    assert set(np.unique(made[..., :3])) >= {0, 255}


@pytest.mark.parametrize("call, argument, words", [
    (lambda p: krlimage.brightness(p, "x"), "brightnessInt", "expected an integer, got 'x'"),
    (lambda p: krlimage.brightness(p, 1.5), "brightnessInt", "expected an integer, got 1.5"),
    (lambda p: krlimage.brightness(p, 2**31), "brightnessInt", "an integer of 32 bits, got 2147483648"),
    (lambda p: krlimage.contrast(p, "x"), "contrastFloat", "expected a number"),
    (lambda p: krlimage.contrast(p, 1j), "contrastFloat", "expected a number"),
    (lambda p: krlimage.invert(p, 5), "colourOrAlpha", "expected a name, got 5"),
    (lambda p: krlimage.brightness(p, 4, "Grey"), "colourOrAlpha", "expected #RGB"),
    (lambda p: krlimage.drawCheckerBox(p, 4, "red"), "cOne", "a colour such as"),
    (lambda p: krlimage.drawCheckerBox(p, 4, (1, 2, 256)), "cOne", "a colour such as"),
    (lambda p: krlimage.drawCheckerBox(p, 4, (1, 2)), "cOne", "a colour such as"),
    (lambda p: krlimage.drawCheckerBox(p, 4, (1, 2, 3.5)), "cOne", "a colour such as"),
    (lambda p: krlimage.zoomBlur(p, 4, 7), "zoomPoint", "a point such as"),
    (lambda p: krlimage.zoomBlur(p, 4, (1, 2, 3)), "zoomPoint", "a point such as"),
    (lambda p: krlimage.zoomBlur(p, 4, (1, 2**40)), "zoomPoint", "a point such as"),
    (lambda p: krlimage.multiColourise(p, 7), "colourValues", "colours such as"),
    (lambda p: krlimage.multiColourise(p, "red"), "colourValues", "colours such as"),
    (lambda p: krlimage.multiColourise(p, {0: "red"}), "colourValues", "a colour such as"),
    (lambda p: krlimage.multiColourise(p, {"a": "#ffffff"}), "colourValues", "an integer"),
], ids=lambda value: value if isinstance(value, str) else "")
def test_a_wrong_argument_is_named(picture, call, argument, words):
    before = picture.copy()
    with pytest.raises(krlimage.KrlError) as caught:
        call(picture)
    assert caught.value.argument == argument and words in str(caught.value)
    assert str(caught.value).startswith(f"{caught.value.method}: {argument}: ")
    np.testing.assert_array_equal(picture, before)


def test_a_deep_list_is_refused(picture):
    deep = []
    for _ in range(70):
        deep = [deep]
    with pytest.raises(ValueError, match="nested too deeply"):
        krlimage.drawBezierShape(picture, deep)


def test_a_failure_carries_the_method_the_text_and_the_reason(picture):
    with pytest.raises(krlimage.KrlError) as caught:
        krlimage.interlace(picture, "deinterlace", 5)
    error = caught.value
    assert (error.method, error.argument, error.text, error.reason) == (
        "interlace", None, "Interlace invalid input fieldDominance (Image)", "the method failed")
    copy = pickle.loads(pickle.dumps(error))
    assert vars(copy) == vars(error) and str(copy) == str(error)


def test_unknown_and_surplus_arguments_are_python_errors(picture):
    with pytest.raises(TypeError, match="amount"):
        krlimage.brightness(picture, amount=3)
    with pytest.raises(TypeError):
        krlimage.brightness(picture, 1, "RGB", 5)
    with pytest.raises(TypeError, match="foreground"):
        krlimage.composite(picture)
