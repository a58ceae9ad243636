"""Where and how much an effect changes a picture, and lengths in percent."""

import krlimage
import numpy as np
import pytest


def rewriting():
    return [effect for effect in krlimage.effects.values()
            if effect.rewrites_picture and "picture" in effect.function.__annotations__]


@pytest.mark.parametrize("effect", rewriting(), ids=lambda effect: effect.name)
def test_every_effect_that_rewrites_a_picture_changes_a_region_alone(effect, picture):
    second = {argument.name: picture[::-1] for argument in effect.arguments if argument.kind == "picture"}
    first = effect.function(picture, **second)
    whole = first[0] if isinstance(first, tuple) else first
    made = effect.function(picture, **second, region=(8, 4, 40, "50%"))
    part = made[0] if isinstance(made, tuple) else made
    expected = picture.copy()
    expected[4:24, 8:40] = whole[4:24, 8:40]
    np.testing.assert_array_equal(part, expected)


def test_a_share_of_the_change(picture):
    black = krlimage.brightness(picture, -255)
    assert (krlimage.brightness(picture, -255, mix=0) == picture).all()
    assert (krlimage.brightness(picture, -255, mix=1) == black).all()
    half = krlimage.brightness(picture, -255, mix=0.5)
    assert abs(half[..., :3].astype(int) * 2 - picture[..., :3]).max() <= 2


def test_a_mask_of_any_form_shares_by_its_brightness(picture):
    grey = np.zeros(picture.shape[:2], np.uint8)
    grey[:, 20:] = 255
    expected = picture.copy()
    expected[:, 20:] = krlimage.invert(picture)[:, 20:]
    colour = np.repeat(grey[..., None], 3, axis=2)
    for mask in (grey, colour, krlimage.rgba(grey), krlimage.rgba(grey)[::-1][::-1]):
        np.testing.assert_array_equal(krlimage.invert(picture, mask=mask), expected)
        np.testing.assert_array_equal(krlimage.invert(picture, mask=mask, order="BGR"), expected)
    target = picture.copy()
    assert krlimage.invert(target, mask=grey, out=target) is target
    np.testing.assert_array_equal(target, expected)


def test_a_feather_grows_inside_the_region(picture):
    made = krlimage.brightness(picture, -255, region=(0, 0, 64, 48), feather="25%")
    levels = made[24, :, 0] / np.maximum(picture[24, :, 0], 1)
    assert levels[0] > 0.9 and levels[32] == 0
    np.testing.assert_array_equal(made, krlimage.brightness(picture, -255, region=(0, 0, 64, 48), feather=12))


def test_lengths_and_points_in_percent_of_the_picture(picture):
    assert (krlimage.vignette(picture, blur="25%") == krlimage.vignette(picture, blur=12)).all()
    spun = krlimage.zoomBlur(picture, 60, ("25%", 12))
    assert (spun == krlimage.zoomBlur(picture, 60, (16, 12))).all()
    assert {argument.name for argument in krlimage.effects["vignette"].arguments if argument.is_length} == {"blur"}
    assert not krlimage.effects["brightness"].arguments[0].is_length


@pytest.mark.parametrize("given, message", [
    ({"mix": 2}, "vignette: mix: expected a number from 0 to 1, got 2.0"),
    ({"mix": None}, "vignette: mix: expected a number, got None"),
    ({"region": (0, 0, 5)}, "vignette: region: expected left, top, right and bottom such as (0, 0, 480, 320), got (0, 0, 5)"),
    ({"region": (9, 0, 5, 5)}, "vignette: region: expected left before right and top before bottom, got [9, 0, 5, 5]"),
    ({"feather": 3}, "vignette: feather needs a region"),
    ({"feather": "x", "region": (0, 0, 5, 5)}, "vignette: feather: expected an integer, got 'x'"),
    ({"mask": np.zeros((4, 4), np.uint8)}, "mask: expected a picture of 64 by 48 pixels, got one of 4 by 4"),
    ({"blur": "ten"}, "vignette: blur: expected an integer, got 'ten'"),
    ({"transparency": "10%"}, "vignette: transparency: a percentage is for a length or a point at character 3 of 10%"),
])
def test_what_is_wrong_is_said_before_the_picture_is_touched(picture, given, message):
    target = picture.copy()
    with pytest.raises(krlimage.KrlError) as caught:
        krlimage.vignette(target, out=target, **given)
    assert str(caught.value) == message and caught.value.method == "vignette"
    name = next(iter(given))
    assert caught.value.argument in (name, None) and (caught.value.argument or "needs a region" in message)
    np.testing.assert_array_equal(target, picture)


def test_effects_that_make_something_else_take_none_of_it():
    with pytest.raises(TypeError):
        krlimage.halfSize(krlimage.sample(), mix=0.5)
