"""Arrays of every form, and those that are no pictures."""

import krlimage
import numpy as np
import pytest
from PIL import Image


def test_an_effect_leaves_its_picture_alone_and_gives_a_new_one(picture):
    before = picture.copy()
    made = krlimage.invert(picture)
    np.testing.assert_array_equal(picture, before)
    np.testing.assert_array_equal(made[..., :3], 255 - picture[..., :3])
    assert made.dtype == np.uint8 and made.shape == picture.shape and made.flags.c_contiguous
    assert made.flags.writeable and not np.shares_memory(made, picture)


@pytest.mark.parametrize("order", ["RGB", "BGR"])
def test_three_channels_are_an_opaque_picture(picture, order):
    made = krlimage.sepia(np.ascontiguousarray(picture[..., :3]), order=order)
    assert made.shape == (48, 64, 3)
    np.testing.assert_array_equal(made, krlimage.sepia(picture, order=order)[..., :3])


def test_the_order_says_which_channel_is_red(picture):
    swapped = picture[..., [2, 1, 0, 3]]
    np.testing.assert_array_equal(krlimage.sepia(swapped, order="BGR")[..., [2, 1, 0, 3]], krlimage.sepia(picture))
    assert (krlimage.sepia(swapped) != krlimage.sepia(picture)[..., [2, 1, 0, 3]]).any()


def test_grey_arrays_stay_grey(picture):
    grey = picture[..., 0]
    np.testing.assert_array_equal(krlimage.invert(grey), 255 - grey)
    with pytest.raises(ValueError, match="sepia made colours, which a grey array cannot hold"):
        krlimage.sepia(grey)


def test_transparency_is_not_lost_in_silence(picture):
    colour = np.ascontiguousarray(picture[..., :3])
    with pytest.raises(ValueError, match="alphaCrop made the picture transparent.*krlimage.rgba"):
        krlimage.alphaCrop(colour)
    assert (krlimage.alphaCrop(krlimage.rgba(colour))[..., 3] == 0).any()


def test_everything_with_an_array_interface_is_a_picture(picture):
    expected = krlimage.sepia(picture)
    image = Image.fromarray(picture)
    np.testing.assert_array_equal(krlimage.sepia(image), expected)
    np.testing.assert_array_equal(krlimage.sepia(image.convert("RGB")), expected[..., :3])
    np.testing.assert_array_equal(krlimage.sepia(image.convert("P")), krlimage.sepia(image.convert("P").convert("RGBA")))
    np.testing.assert_array_equal(krlimage.sepia(memoryview(picture)), expected)

    class Framed:
        __array_interface__ = picture.__array_interface__

    np.testing.assert_array_equal(krlimage.sepia(Framed()), expected)


def test_a_buffer_is_rewritten_in_place(picture):
    expected = krlimage.invert(picture)
    view = memoryview(picture)
    assert krlimage.invert(view, out=view).base is not None
    np.testing.assert_array_equal(picture, expected)


@pytest.mark.parametrize("height, width", [(1, 1), (1, 3), (3, 5), (2, 4), (7, 2), (5, 13), (48, 64)])
@pytest.mark.parametrize("order", ["RGB", "BGR"])
@pytest.mark.parametrize("channels", [4, 3, 1])
def test_pixels_of_every_form_and_size_keep_their_bytes(height, width, order, channels):
    levels = np.random.default_rng(height).integers(0, 256, (height, 3 * width + 1, channels), np.uint8)
    plain = np.ascontiguousarray(levels[:, :width])
    for given in (plain, levels[:, 1:width + 1], levels[:, 1:3 * width:3]):
        given = given if channels > 1 else given[..., 0]
        np.testing.assert_array_equal(krlimage.brightness(given, 0, order=order), given)
        expected = 255 - given
        if channels == 4:
            expected[..., 3] = given[..., 3]
        np.testing.assert_array_equal(krlimage.invert(given, order=order), expected)
        out = np.zeros((height, 2 * width, channels), np.uint8)[:, ::2].reshape(given.shape)
        krlimage.invert(given, order=order, out=out)
        np.testing.assert_array_equal(out, expected)
    wide = krlimage.rgba(plain if channels > 1 else plain[..., 0])
    np.testing.assert_array_equal(wide[..., :3], plain[..., :3] if channels > 1 else np.repeat(plain, 3, axis=2))
    np.testing.assert_array_equal(wide[..., 3], plain[..., 3] if channels == 4 else 255)


@pytest.mark.parametrize("view", [
    lambda a: a[::2, ::3], lambda a: a[::-1], lambda a: a[:, ::-1], lambda a: a[5:20, 7:30],
    lambda a: a.transpose(1, 0, 2), lambda a: np.asfortranarray(a), lambda a: a[..., ::-1][..., [3, 2, 1, 0]],
    lambda a: a[:1, :1], lambda a: a[:, :1], lambda a: a[:1],
], ids=str)
@pytest.mark.parametrize("channels", [4, 3, 0])
def test_views_are_pictures_like_any_other(picture, view, channels):
    whole = picture if channels == 4 else picture[..., :3] if channels == 3 else picture[..., 1]
    if channels == 0 and view(picture).shape[:2] == (64, 48):
        given = whole.T
    else:
        given = view(picture)[..., :3] if channels == 3 else view(picture)[..., 1] if channels == 0 else view(picture)
    before = picture.copy()
    np.testing.assert_array_equal(krlimage.fastGaussianBlur(given, 3),
                                  krlimage.fastGaussianBlur(np.ascontiguousarray(given), 3))
    np.testing.assert_array_equal(picture, before)


def test_out_takes_the_result(picture):
    for out in (np.empty_like(picture), np.zeros((48, 99, 4), np.uint8)[:, 5:69], np.zeros((48, 64, 4), np.uint8, "F")):
        assert krlimage.sepia(picture, out=out) is out or np.shares_memory(krlimage.sepia(picture, out=out), out)
        np.testing.assert_array_equal(out, krlimage.sepia(picture))
    out = np.empty((48, 64, 3), np.uint8)
    krlimage.sepia(picture[..., :3], out=out)
    np.testing.assert_array_equal(out, krlimage.sepia(picture)[..., :3])


def test_out_may_overlap_the_picture(picture):
    shared = np.concatenate([picture, picture[:1]])
    expected = krlimage.sepia(shared[1:].copy())
    krlimage.sepia(shared[1:], out=shared[:-1])
    np.testing.assert_array_equal(shared[:-1], expected)


@pytest.mark.parametrize("order", ["RGB", "BGR"])
@pytest.mark.parametrize("effect", ["hueShift", "fastGaussianBlur"])
def test_the_result_in_another_array_is_that_in_place(picture, order, effect):
    large = np.tile(picture, (5, 4, 1))
    large[..., 3] = np.arange(large.shape[1]) % 256
    call, before = getattr(krlimage, effect), large.copy()
    expected = large.copy()
    call(expected, out=expected, order=order)
    memory = np.zeros((large.shape[0], large.shape[1] + 3, 4), np.uint8)
    for out in [np.zeros_like(large), memory[:, :-3], np.zeros((*large.shape[:2], 8), np.uint8)[..., ::2]]:
        assert call(large, out=out, order=order) is out
        np.testing.assert_array_equal(out, expected)
    np.testing.assert_array_equal(call(large, order=order), expected)
    np.testing.assert_array_equal(call(large[:, 1:], order=order), call(large[:, 1:].copy(), order=order))
    np.testing.assert_array_equal(large, before)
    assert not memory[:, -3:].any()


@pytest.mark.parametrize("order", ["RGB", "BGR"])
def test_the_result_may_take_the_place_of_the_second_picture(picture, order):
    other = np.ascontiguousarray(picture[::-1])
    expected = krlimage.composite(picture, other, "multiply", order=order)
    krlimage.composite(picture, other, "multiply", order=order, out=other)
    np.testing.assert_array_equal(other, expected)


def test_a_wrong_call_leaves_the_other_array_alone(picture):
    out = np.full_like(picture, 7)
    with pytest.raises(krlimage.KrlError):
        krlimage.brightness(picture, 1.5, out=out)
    with pytest.raises(krlimage.KrlError):
        krlimage.colourTemperature(picture, "x", out=out)
    assert (out == 7).all()


def test_no_calls_copy_the_picture(picture):
    for out in [np.zeros_like(picture), np.zeros((48, 64, 8), np.uint8)[..., ::2]]:
        assert krlimage.apply(picture, out=out) is out
        np.testing.assert_array_equal(out, picture)
    np.testing.assert_array_equal(krlimage.apply(picture), picture)



EXPECTED = ("expected an array of uint8 with the shape (height, width, 4), (height, width, 3) or (height, width), "
            "got ")


class WithoutMemory:
    __array_interface__ = {"version": 3, "shape": (4, 4, 4), "typestr": "<f4", "data": bytes(4 * 4 * 4 * 4)}


@pytest.mark.parametrize("bad, error, words", [
    ("photo.png", TypeError, EXPECTED + "str"),
    (None, TypeError, EXPECTED + "NoneType"),
    (7, TypeError, EXPECTED + "int64 with the shape ()"),
    ([[1, 2], [3]], TypeError, EXPECTED + "list"),
    (b"bytes", TypeError, EXPECTED + "bytes"),
    (object(), TypeError, EXPECTED + "object"),
    (np.zeros((4, 4, 4)), TypeError, EXPECTED + "float64 with the shape (4, 4, 4)"),
    (np.zeros((4, 4, 4), np.uint16), TypeError, EXPECTED + "uint16 with the shape (4, 4, 4)"),
    (np.zeros((4, 4, 4), np.int8), TypeError, EXPECTED + "int8 with the shape (4, 4, 4)"),
    (np.zeros((4, 4, 4), bool), TypeError, EXPECTED + "bool with the shape (4, 4, 4)"),
    (WithoutMemory(), TypeError, EXPECTED + "float32 with the shape (4, 4, 4)"),
    (memoryview(bytes(64)).cast("f", (4, 4)), TypeError, EXPECTED + "float32 with the shape (4, 4)"),
    (np.zeros(4, np.uint8), ValueError, EXPECTED + "the shape (4,)"),
    (np.zeros((4, 4, 2), np.uint8), ValueError, EXPECTED + "the shape (4, 4, 2)"),
    (np.zeros((4, 4, 5), np.uint8), ValueError, EXPECTED + "the shape (4, 4, 5)"),
    (np.zeros((4, 4, 0), np.uint8), ValueError, EXPECTED + "the shape (4, 4, 0)"),
    (np.zeros((4, 4, 1), np.uint8), ValueError, EXPECTED + "the shape (4, 4, 1)"),
    (np.zeros((1, 4, 4, 4), np.uint8), ValueError, EXPECTED + "the shape (1, 4, 4, 4)"),
    (np.zeros((0, 4, 4), np.uint8), ValueError, "expected at least one pixel, got the shape (0, 4, 4)"),
    (np.zeros((4, 0, 4), np.uint8), ValueError, "expected at least one pixel, got the shape (4, 0, 4)"),
    (np.zeros((0, 0), np.uint8), ValueError, "expected at least one pixel, got the shape (0, 0)"),
    (np.broadcast_to(np.uint8(0), (40000, 20000, 4)), ValueError,
     "expected at most 536870911 pixels, got 40000 by 20000"),
], ids=repr)
def test_what_is_no_picture_is_refused(bad, error, words, picture):
    with pytest.raises(error) as caught:
        krlimage.invert(bad)
    assert str(caught.value) == "picture: " + words
    with pytest.raises(error) as caught:
        krlimage.composite(picture, bad)
    assert str(caught.value) == "composite: foreground: " + words


def read_only(array):
    array.flags.writeable = False
    return array


@pytest.mark.parametrize("out, error, words", [
    (lambda: read_only(np.zeros((48, 64, 4), np.uint8)), ValueError,
     "expected an array that is writable, got a read-only one"),
    (lambda: memoryview(bytes(48 * 64 * 4)).cast("B", (48, 64, 4)), ValueError,
     "expected an array that is writable, got a read-only one"),
    (lambda: np.zeros((48, 64, 3), np.uint8), ValueError,
     "expected the shape of the picture, (48, 64, 4), got (48, 64, 3)"),
    (lambda: np.zeros((48, 65, 4), np.uint8), ValueError,
     "expected the shape of the picture, (48, 64, 4), got (48, 65, 4)"),
    (lambda: np.zeros((0, 64, 4), np.uint8), ValueError, "expected at least one pixel, got the shape (0, 64, 4)"),
    (lambda: np.zeros((48, 64, 4)), TypeError, EXPECTED + "float64 with the shape (48, 64, 4)"),
    (lambda: np.zeros((48, 64, 4), np.uint8)[::-1], ValueError,
     "expected rows and pixels in ascending order, got the strides (-256, 4, 1)"),
    (lambda: np.zeros((48, 64, 4), np.uint8)[..., ::-1], ValueError,
     "expected rows and pixels in ascending order, got the strides (256, 4, -1)"),
    (lambda: [[0]], TypeError, "expected an array to write to, got list"),
    (lambda: Image.new("RGBA", (64, 48)), TypeError, "expected an array to write to, got Image"),
], ids=lambda value: "")
def test_what_takes_no_result_is_refused(picture, out, error, words):
    before = picture.copy()
    with pytest.raises(error) as caught:
        krlimage.invert(picture, out=out())
    assert str(caught.value) == "out: " + words
    np.testing.assert_array_equal(picture, before)


def test_a_read_only_picture_is_read_but_not_rewritten(picture):
    expected = krlimage.invert(picture)
    read_only(picture)
    np.testing.assert_array_equal(krlimage.invert(picture), expected)
    with pytest.raises(ValueError, match="^out: expected an array that is writable, got a read-only one$"):
        krlimage.invert(picture, out=picture)


def test_an_unknown_order_is_refused(picture):
    for order in ("ARGB", None, 3, []):
        with pytest.raises(ValueError, match='order: expected "RGB" or "BGR"'):
            krlimage.invert(picture, order=order)


def test_new_pictures_have_the_form_of_theirs(picture):
    half = krlimage.halfSize(picture)
    assert half.shape == (24, 32, 4)
    np.testing.assert_array_equal(krlimage.halfSize(picture[..., :3]), half[..., :3])
    np.testing.assert_array_equal(krlimage.halfSize(picture[..., [2, 1, 0, 3]], order="BGR")[..., [2, 1, 0, 3]], half)
    parts = krlimage.broadcastSplit(picture, 4)
    assert [part.shape for part in parts] == [(24, 32, 4)] * 4
    np.testing.assert_array_equal(krlimage.broadcastCombine(parts), picture)
    gradient = krlimage.RGBGradient(8, 2, "linear", ["#ff0000", "#ff0000"])
    assert gradient.shape == (2, 8, 4) and tuple(gradient[0, 0]) == (255, 0, 0, 255)
    assert tuple(krlimage.RGBGradient(8, 2, "linear", ["#ff0000", "#ff0000"], order="BGR")[0, 0]) == (0, 0, 255, 255)


def test_a_new_picture_outlives_its_call(picture):
    parts = [krlimage.halfSize(picture) for _ in range(50)]
    for part in parts:
        np.testing.assert_array_equal(part, parts[0])


def test_the_first_picture_of_reinterlace_is_the_one_that_changes(picture):
    other = 255 - picture
    before = picture.copy()
    made = krlimage.reinterlace(picture, other)
    np.testing.assert_array_equal(picture, before)
    np.testing.assert_array_equal(made[::2], picture[::2])
    np.testing.assert_array_equal(made[1::2], other[1::2])
    krlimage.reinterlace(picture, other, out=picture)
    np.testing.assert_array_equal(picture, made)
