#!/usr/bin/env python3
"""Times effects beside the nearest operations of OpenCV, Pillow and scikit-image, and prints a table.

    python3 bench/python/bench.py [--threads N] [--runs N] [--size WIDTH HEIGHT] [WORD...]

Runs alternate between the libraries in one process; the table has medians in milliseconds and how long ours
takes in relation to theirs: with a new array for each result, and for OpenCV also with `out=` and `dst=` an array
that is there. On one thread, the default, that is processor time, which other programs on the machine hardly
disturb; otherwise it is time by the clock. Words choose rows. Libraries that are not installed are left out.
"""

import argparse
import os
import statistics
import time

import krlimage
import numpy as np

try:
    import cv2
except ImportError:
    cv2 = None
try:
    from PIL import Image, ImageChops, ImageFilter, ImageOps
except ImportError:
    Image = None
try:
    import skimage
    import skimage.color
    import skimage.exposure
    import skimage.filters
    import skimage.transform
    import skimage.util
except ImportError:
    skimage = None


class Scene:
    """The landscape enlarged, with grain, as each library likes it: BGRA, an image, RGB."""

    def __init__(self, width, height):
        size = (width, height)
        large = np.array(Image.fromarray(krlimage.sample()).resize(size, Image.BILINEAR))
        grain = np.random.default_rng(1).integers(-6, 7, (height, width, 1), np.int16)
        large[..., :3] = np.clip(large[..., :3] + grain, 0, 255)
        self.rgba = large
        self.bgra = np.ascontiguousarray(large[..., [2, 1, 0, 3]])
        self.rgb = np.ascontiguousarray(large[..., :3])
        self.out, self.theirs = np.zeros_like(self.bgra), np.zeros_like(self.bgra)
        self.other = np.ascontiguousarray(self.bgra[::-1])
        self.other[..., 3] = 128
        self.image = Image.fromarray(self.rgb)
        self.image_rgba = Image.fromarray(self.rgba)
        self.other_image = Image.fromarray(np.ascontiguousarray(self.other[..., [2, 1, 0, 3]]))
        self.curve = np.clip(np.arange(256) * 1.4 - 50, 0, 255).astype(np.uint8)
        y, x = np.mgrid[0:height, 0:width].astype(np.float32)
        self.across, self.down = x - width / 2, y - height / 2
        self.maps = self.twirl_maps() if cv2 else None

    def twirl_maps(self):
        """Where each pixel comes from, for OpenCV."""
        height, width = self.across.shape
        distance, angle = cv2.cartToPolar(self.across, self.down)
        x, y = cv2.polarToCart(distance, angle + (height - distance) / (width / 2))
        return x + width / 2, y + height / 2


def cv_hue(s, o):
    hsv = cv2.cvtColor(s.bgra, cv2.COLOR_BGR2HSV)
    hsv[..., 0] = cv2.add(hsv[..., 0], 20)
    return cv2.cvtColor(hsv, cv2.COLOR_HSV2BGR, dst=o, dstCn=4)


def cv_hue_in_floats(s, o):
    hsv = cv2.cvtColor(s.bgra[..., :3].astype(np.float32) / 255, cv2.COLOR_BGR2HSV)
    hsv[..., 0] += 40
    return cv2.convertScaleAbs(cv2.cvtColor(hsv, cv2.COLOR_HSV2BGR, dstCn=4), alpha=255, dst=o)


def pil_hue(s):
    h, sat, value = s.image.convert("HSV").split()
    return Image.merge("HSV", (h.point(lambda level: (level + 28) % 256), sat, value)).convert("RGB")


def skimage_hue(s):
    hsv = skimage.color.rgb2hsv(s.rgb)
    hsv[..., 0] = (hsv[..., 0] + 0.11) % 1
    return skimage.util.img_as_ubyte(skimage.color.hsv2rgb(hsv))


def cv_desaturate(s, o):
    return cv2.cvtColor(cv2.cvtColor(s.bgra, cv2.COLOR_BGRA2GRAY), cv2.COLOR_GRAY2BGRA, dst=o)


def cv_sharpen(s, o):
    return cv2.addWeighted(s.bgra, 1.8, cv2.GaussianBlur(s.bgra, (21, 21), 0), -0.8, 0, dst=o)


def cv_sobel(s, o):
    across, down = cv2.Sobel(s.bgra, cv2.CV_32F, 1, 0), cv2.Sobel(s.bgra, cv2.CV_32F, 0, 1)
    return cv2.convertScaleAbs(cv2.magnitude(across, down), dst=o)


def cv_twirl(s, o):
    return cv2.remap(s.bgra, *s.twirl_maps(), cv2.INTER_LINEAR, dst=o, borderMode=cv2.BORDER_REPLICATE)


def cv_noise(s, o):
    noise = cv2.randu(np.empty_like(s.bgra), 0, 40)
    return cv2.add(s.bgra, noise, dst=o)


# Work, ours, and the others' nearest operations; None where a library has nothing like it.
ROWS = [
    ("curve", lambda s, o: krlimage.contrast(s.bgra, 1.4, order="BGR", out=o),
     lambda s, o: cv2.LUT(s.bgra, s.curve, dst=o), lambda s: s.image.point(list(s.curve) * 3),
     lambda s: skimage.exposure.adjust_gamma(s.rgb, 1.2)),
    ("constant added", lambda s, o: krlimage.brightness(s.bgra, 40, order="BGR", out=o),
     lambda s, o: cv2.add(s.bgra, (40, 40, 40, 0), dst=o), lambda s: s.image.point(lambda level: level + 40), None),
    ("invert", lambda s, o: krlimage.invert(s.bgra, order="BGR", out=o),
     lambda s, o: cv2.bitwise_not(s.bgra, dst=o), lambda s: ImageOps.invert(s.image),
     lambda s: skimage.util.invert(s.rgb)),
    ("desaturate", lambda s, o: krlimage.desaturate(s.bgra, order="BGR", out=o), cv_desaturate,
     lambda s: s.image.convert("L").convert("RGB"),
     lambda s: skimage.color.gray2rgb(skimage.util.img_as_ubyte(skimage.color.rgb2gray(s.rgb)))),
    ("hue", lambda s, o: krlimage.hueShift(s.bgra, 40, order="BGR", out=o), cv_hue, pil_hue, skimage_hue),
    ("hue, theirs in floats", lambda s, o: krlimage.hueShift(s.bgra, 40, order="BGR", out=o), cv_hue_in_floats,
     None, None),
    ("blur, radius 10", lambda s, o: krlimage.fastGaussianBlur(s.bgra, 10, order="BGR", out=o),
     lambda s, o: cv2.GaussianBlur(s.bgra, (21, 21), 0, dst=o), lambda s: s.image.filter(ImageFilter.GaussianBlur(5)),
     lambda s: skimage.filters.gaussian(s.rgb, 5, channel_axis=2)),
    ("sharpen, radius 10", lambda s, o: krlimage.sharpen(s.bgra, 10, 0.8, 0, order="BGR", out=o), cv_sharpen,
     lambda s: s.image.filter(ImageFilter.UnsharpMask(5, 80, 0)),
     lambda s: skimage.filters.unsharp_mask(s.rgb, 5, 0.8, channel_axis=2)),
    ("maximum, 11 by 11", lambda s, o: krlimage.erosion(s.bgra, 5, order="BGR", out=o),
     lambda s, o: cv2.dilate(s.bgra, np.ones((11, 11), np.uint8), dst=o),
     lambda s: s.image.filter(ImageFilter.MaxFilter(11)), None),
    ("Sobel", lambda s, o: krlimage.sobel(s.bgra, order="BGR", out=o), cv_sobel,
     lambda s: s.image.filter(ImageFilter.FIND_EDGES), lambda s: skimage.filters.sobel(s.rgb)),
    ("twirl", lambda s, o: krlimage.twirl(s.bgra, 10, order="BGR", out=o), cv_twirl, None,
     lambda s: skimage.transform.swirl(s.rgb, strength=1, radius=2000)),
    ("twirl, their map given", lambda s, o: krlimage.twirl(s.bgra, 10, order="BGR", out=o),
     lambda s, o: cv2.remap(s.bgra, *s.maps, cv2.INTER_LINEAR, dst=o, borderMode=cv2.BORDER_REPLICATE), None,
     None),
    ("alpha over", lambda s, o: krlimage.composite(s.bgra, s.other, "normal", order="BGR", out=o),
     lambda s, o: cv2.addWeighted(s.bgra, 0.5, s.other, 0.5, 0, dst=o),
     lambda s: Image.alpha_composite(s.image_rgba, s.other_image), None),
    ("blend, screen", lambda s, o: krlimage.composite(s.bgra, s.other, "screen", order="BGR", out=o),
     None, lambda s: ImageChops.screen(s.image_rgba, s.other_image), None),
    ("noise", lambda s, o: krlimage.noise(s.bgra, order="BGR", out=o), cv_noise,
     lambda s: ImageChops.add(s.image.getchannel(0), Image.effect_noise(s.image.size, 20)),
     lambda s: skimage.util.random_noise(s.rgb, var=0.01)),
]


def medians(jobs, runs, clock):
    """The median of each job in milliseconds; the jobs alternate."""
    times = [[] for _ in jobs]
    for run in range(runs + 1):
        for index, job in enumerate(jobs):
            # What takes seconds is run once; of all else the first run warms up.
            if job is None or times[index] and times[index][0] > 2:
                continue
            start = clock()
            job()
            taken = clock() - start
            if run or taken > 2:
                times[index].append(taken)
    return [statistics.median(found) * 1000 if found else None for found in times]


def cell(theirs, ours):
    return "" if theirs is None else f"{theirs:.1f} ({ours / theirs:.2g})"


def show(scene, work, ours, in_cv2, others, runs, clock):
    jobs = [lambda: ours(scene, None), in_cv2 and (lambda: in_cv2(scene, None))]
    jobs += [other and (lambda other=other: other(scene)) for other in others]
    jobs += [lambda: ours(scene, scene.out), in_cv2 and (lambda: in_cv2(scene, scene.theirs))]
    new, cv2_new, *theirs, into, cv2_into = medians(jobs, runs, clock)
    cells = [f"{new:.1f}", cell(cv2_new, new), *(cell(time, new) for time in theirs), f"{into:.1f}", cell(cv2_into, into)]
    print("| " + " | ".join([work, *cells]) + " |", flush=True)


def overhead():
    """Microseconds of a call on one pixel, beyond what the engine itself takes for it."""
    from krlimage import _native

    pixel = np.zeros((1, 1, 4), np.uint8)
    symbol = [_native.symbol("RGB")]

    def best(job):
        times = []
        for _ in range(20):
            start = time.process_time()
            for _ in range(500):
                job()
            times.append(time.process_time() - start)
        return min(times) / 500 * 1e6

    whole = best(lambda: krlimage.invert(pixel, out=pixel, order="BGR"))
    engine = best(lambda: _native.call("invert", (pixel, _native.BGRA), None, symbol, [], 1))
    print(f"\nA call on one pixel takes {whole:.1f} microseconds, {engine:.1f} of them in the engine.")


def main():
    parser = argparse.ArgumentParser(description="Times effects beside other libraries.")
    parser.add_argument("--threads", type=int, default=1, help="0 for one for each processor (default: 1)")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--size", type=int, nargs=2, default=(4000, 3000))
    parser.add_argument("words", nargs="*")
    options = parser.parse_args()
    krlimage.set_threads(options.threads)
    if cv2:
        cv2.setNumThreads(options.threads or os.cpu_count())
    clock = time.process_time if options.threads == 1 else time.perf_counter
    present = [name for name, library in (("PIL", Image), ("skimage", skimage)) if library]
    print(f"{options.size[0]} by {options.size[1]}, {options.threads or os.cpu_count()} threads, load "
          f"{os.getloadavg()[0]:.1f}: milliseconds, and ours in relation to theirs\n")
    heads = ["Work", "ours, new array", "cv2, new array", *present, "ours, `out=`", "cv2, `dst=`"]
    print("| " + " | ".join(heads) + " |\n" + "|---" * len(heads) + "|")
    scene = Scene(*options.size)
    for work, ours, in_cv2, *others in ROWS:
        if options.words and not any(word in work for word in options.words):
            continue
        usable = [other for other, library in zip(others, (Image, skimage)) if library]
        show(scene, work, ours, in_cv2 if cv2 else None, usable, options.runs, clock)
    if options.threads == 1:
        overhead()


if __name__ == "__main__":
    main()
