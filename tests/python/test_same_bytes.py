"""Every effect gives the bytes of the engine's own table of hashes, whatever way it is called."""

import struct

import krlimage
import numpy as np
import pytest
from conftest import TREE
from krlimage import _native


def fnv(*parts):
    """FNV-1a over 64 bits, as eight hexadecimal digits twice."""
    state = 0xCBF29CE484222325
    for part in parts:
        for byte in part:
            state = ((state ^ byte) * 0x100000001B3) & 0xFFFFFFFFFFFFFFFF
    return f"{state:016x}"


def read_pam(path):
    header, _, pixels = path.read_bytes().partition(b"ENDHDR\n")
    fields = dict(line.split() for line in header.decode().splitlines()[1:])
    return np.frombuffer(pixels, np.uint8).reshape(int(fields["HEIGHT"]), int(fields["WIDTH"]), 4)


def table():
    rows = (line.split() for line in (TREE / "tests/hashes.txt").read_text().splitlines())
    return {(method, picture): digest for method, picture, digest in rows}


class Stage:
    """Calls of an effect with its example's arguments, on the pictures of the table."""

    def __init__(self, effect, folder, name):
        self.effect = effect
        self.picture = read_pam(folder / f"{name}.pam")
        self.second = {argument.name: self.second_picture(argument, folder)
                       for argument in effect.arguments if argument.kind == "picture"}
        if effect.name == "broadcastCombine":
            self.second["imageList"] = [np.full((320, 480, 4), 255, np.uint8)] * 4

    @staticmethod
    def second_picture(argument, folder):
        return read_pam(folder / (argument.example.partition(".")[0] + ".pam"))

    def takes_picture(self):
        return "picture" in self.effect.function.__annotations__

    def call(self, picture, order="RGB", **given):
        """The picture afterwards, and the message of a failure."""
        names = self.effect.function.__annotations__
        given = {**self.second, **({"order": order} if "order" in names else {}), **given}
        try:
            made = self.effect.function(*([picture] if self.takes_picture() else []), **given)
        except krlimage.KrlError as error:
            return picture, error.text
        if self.effect.changed_argument is not None:
            return picture, ""
        while isinstance(made, (tuple, list)) and made:
            made = made[0]
        return (made if isinstance(made, np.ndarray) and made.ndim == 3 else picture), ""


def swapped(pixels):
    return pixels[..., [2, 1, 0, 3]]


def digest(picture, message):
    height, width = picture.shape[:2]
    return fnv(struct.pack("<ii", width, height), swapped(picture).tobytes(), message.encode())


@pytest.mark.parametrize("picture", ["landscape", "greenscreen"])
@pytest.mark.parametrize("effect", krlimage.effects.values(), ids=lambda effect: effect.name)
def test_of_the_table(effect, picture, hash_pictures):
    stage = Stage(effect, hash_pictures, picture)
    expected = table()[effect.script_name, picture]
    assert digest(*stage.call(stage.picture)) == expected


@pytest.mark.parametrize("effect", krlimage.effects.values(), ids=lambda effect: effect.name)
def test_in_either_order_in_place_and_in_strided_memory(effect, hash_pictures):
    stage = Stage(effect, hash_pictures, "greenscreen")
    expected, message = stage.call(stage.picture)
    in_bgr = {name: [swapped(item) for item in picture] if isinstance(picture, list) else swapped(picture)
              for name, picture in stage.second.items()}
    made, text = stage.call(swapped(stage.picture), "BGR", **in_bgr)
    assert text == message
    np.testing.assert_array_equal(swapped(made), expected)

    height, width = stage.picture.shape[:2]
    roomy = np.zeros((height, width + 7, 4), np.uint8)
    sparse = np.zeros((height * 2, width * 3, 4), np.uint8)
    for target in (stage.picture.copy(), roomy[:, 3:3 + width], sparse[::2, ::3]):
        target[...] = stage.picture
        made, text = stage.call(target)
        np.testing.assert_array_equal(made, expected)
        if "out" in effect.function.__annotations__ and stage.takes_picture() and not message:
            stage.call(target, out=target)
            np.testing.assert_array_equal(target, expected)
    assert not roomy[:, :3].any() and not roomy[:, 3 + width:].any()
    assert not sparse[1::2].any() and not sparse[:, 1::3].any() and not sparse[:, 2::3].any()


def test_with_any_number_of_threads(picture):
    for effect in krlimage.effects.values():
        if effect.arguments and effect.arguments[0].kind == "picture" or "picture" not in effect.function.__annotations__:
            continue
        results = []
        for threads in (0, 1, 3):
            krlimage.set_threads(threads)
            results.append(effect.function(picture))
        krlimage.set_threads(0)
        for other in results[1:]:
            np.testing.assert_equal(other, results[0])


def test_the_defaults_are_the_values_of_the_example(picture):
    """Functions pass their defaults, the engine's own stand-ins are what it takes without."""
    for effect in krlimage.effects.values():
        if not effect.rewrites_picture or any(argument.kind == "picture" for argument in effect.arguments):
            continue
        pixels = picture.copy()
        code, message, _, _ = _native.call(effect.name, (pixels, _native.RGBA), None, [None] * len(effect.arguments), [], 1)
        assert (code, message) == (0, "")
        made = effect.function(picture)
        np.testing.assert_array_equal(made[0] if isinstance(made, tuple) else made, pixels)
