"""Code of a user: `mypy --strict` has nothing to say about it, and it runs."""

from __future__ import annotations

from pathlib import Path
from typing import List, Literal, Tuple

import krlimage
import numpy as np
import numpy.typing as npt
from PIL import Image  # type: ignore[import]

Pixels = npt.NDArray[np.uint8]
Shape = Literal["ellipse", "rectangle"]


def framed(picture: Pixels, shapes: Tuple[Shape, ...] = ("ellipse", "rectangle")) -> List[Pixels]:
    return [krlimage.vignette(picture, shape, theColor=(60, 24, 6), blur="10%", invert=True) for shape in shapes]


def graded(picture: Pixels, share: float) -> Pixels:
    made = krlimage.multiColourise(picture, {0: "#000000", 100: (255, 244, 200)}, mix=share)
    made = krlimage.multiColourise(made, ["#000000", "#ffffff"], mask=picture, region=(0, "10%", 9, "90%"), feather=2)
    return krlimage.zoomBlur(made, 9, ("50%", 12), order="BGR", out=made)


def keyed(path: Path) -> Pixels:
    with Image.open(path) as image:
        matte, backing = krlimage.autoColorDifference(image, "auto")
    print(backing)
    return krlimage.composite(krlimage.sample(), matte, "normal")


def halves(picture: Pixels) -> List[Tuple[int, ...]]:
    return [part.shape for part in krlimage.broadcastSplit(picture)] + [krlimage.halfSize(picture.data).shape]


def look() -> krlimage.Look:
    corners = krlimage.Parameter("corners", "110", "0", "255", "how dark")
    return krlimage.Look(["sepia", "vignette(transparency: $corners)"], "Warm", parameters=[corners])


def failures(files: List[Path], out: Path) -> List[str]:
    result = krlimage.batch(files, look(), out, jobs=2)
    return [f"{path.name}: {why}" for path, why in result.failed.items()]


def why(picture: Pixels) -> Tuple[str, str | None, str]:
    try:
        krlimage.apply(picture, "brightness(1.5)")
    except krlimage.KrlError as error:
        return error.method, error.argument, error.text
    raise AssertionError("1.5 is no integer")


def scripted(picture: Pixels) -> Pixels:
    script = 'on main\n  image("in").save("out")\nend'
    return krlimage.run_lingo(script, {"in": picture}, steps=99).images["out"]


def numbers() -> List[str]:
    return [argument.name for effect in krlimage.effects.values() for argument in effect.arguments
            if argument.has_neutral]


def main(folder: Path) -> None:
    picture = krlimage.sample("greenscreen")
    Image.fromarray(picture).save(folder / "a.png")
    made = [*framed(picture), graded(picture, 0.5), keyed(folder / "a.png"), look()(picture, corners=60),
            krlimage.looks["noir"](picture), scripted(picture)]
    print([image.shape for image in made], halves(picture), why(picture), len(numbers()))
    print(failures([folder / "a.png", folder / "missing.png"], folder / "out"))
    print(krlimage.show_effect("vignette", picture, blur=160))


if __name__ == "__main__":
    import sys

    main(Path(sys.argv[1]))
