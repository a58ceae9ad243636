"""In place means in place: no copy of the picture, by the process's peak of memory. And what new pictures take."""

import re
import subprocess
import sys
from pathlib import Path

import krlimage
import numpy as np
import pytest

PICTURE_BYTES = 4000 * 3000 * 4

SCRIPT = """
import numpy, krlimage
picture = numpy.full((3000, 4000, 4), 77, numpy.uint8)
warm = numpy.full((8, 8, 4), 77, numpy.uint8)
krlimage.brightness(warm, out=warm)

def peak():
    return int(next(line for line in open("/proc/self/status") if line.startswith("VmHWM")).split()[1]) * 1024

def now():
    return int(next(line for line in open("/proc/self/status") if line.startswith("VmRSS")).split()[1]) * 1024

open("/proc/self/clear_refs", "w").write("5")
before = now()
{call}
print(peak() - before)
"""


def growth(call):
    done = subprocess.run([sys.executable, "-c", SCRIPT.format(call=call)], capture_output=True, text=True, check=True)
    return int(done.stdout)


@pytest.mark.parametrize("order", ["RGB", "BGR"])
@pytest.mark.parametrize("effect", ["brightness", "sepia", "vignette"])
def test_in_place_takes_no_copy(effect, order):
    scratch = PICTURE_BYTES / 2 if effect == "vignette" else 0  # two planes of one byte for each pixel
    assert growth(f"krlimage.{effect}(picture, out=picture, order='{order}')") < scratch + PICTURE_BYTES / 10


def test_a_new_picture_takes_one():
    assert 0.9 * PICTURE_BYTES < growth("made = krlimage.brightness(picture)") < 1.1 * PICTURE_BYTES


def test_nothing_is_left_behind():
    assert growth("for _ in range(20): krlimage.halfSize(picture), krlimage.brightness(picture[:300])") < 2 * PICTURE_BYTES


def resident():
    return int(re.search(r"VmRSS:\s+(\d+)", Path("/proc/self/status").read_text())[1]) * 1024


def test_the_memory_of_a_freed_picture_serves_the_next():
    picture = np.full((3000, 2000, 4), 77, np.uint8)
    first = krlimage.brightness(picture, 1)
    second = krlimage.brightness(picture, 2)
    address, view = first.ctypes.data, first[:10]
    del first
    third = krlimage.brightness(picture, 3)
    assert len({address, second.ctypes.data, third.ctypes.data}) == 3, "a view holds the memory"
    assert (view[..., 0] == 78).all() and (second[..., 0] == 79).all()
    before = resident()
    del view
    assert resident() > before - picture.nbytes / 2, "the system has it back"
    fourth = krlimage.brightness(picture, 4)
    assert fourth.ctypes.data == address and (fourth[..., 0] == 81).all()
    assert (second[..., 0] == 79).all() and (third[..., 0] == 80).all()


def test_the_memory_that_is_kept_for_next_ones_has_a_limit():
    """Of blocks that no other picture fits into, 600 MB in all."""
    call = "for blocks in range(2, 25): krlimage.brightness(numpy.empty((512 * blocks, 1024, 4), numpy.uint8))"
    assert growth(call) < 400e6
