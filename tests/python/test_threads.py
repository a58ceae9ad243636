"""Calls beside each other, and the interpreter's lock."""

import threading
import time
from concurrent.futures import ThreadPoolExecutor

import krlimage
import numpy as np
import pytest


@pytest.fixture(autouse=True)
def one_thread_each():
    krlimage.set_threads(1)
    yield
    krlimage.set_threads(0)


def grade(picture):
    made = krlimage.hueShift(picture, 40)
    made = krlimage.sobel(made, out=made)
    return krlimage.composite(krlimage.noise(made, out=made), picture)


def test_threads_side_by_side_give_the_same_bytes(picture):
    pictures = [np.roll(picture, shift, 0) for shift in range(24)]
    expected = [grade(one) for one in pictures]
    with ThreadPoolExecutor(6) as pool:
        for made, good in zip(pool.map(grade, pictures), expected):
            np.testing.assert_array_equal(made, good)


def test_another_thread_runs_while_an_effect_does():
    """A thread that counts gets on; with the interpreter's lock held it would not count at all."""
    large = np.random.default_rng(2).integers(0, 256, (700, 1000, 4), np.uint8)
    during = []
    counts = [0]
    ends = threading.Event()

    def count():
        while not ends.is_set():
            counts[0] += 1
            time.sleep(0)

    counter = threading.Thread(target=count)
    counter.start()
    for _ in range(3):
        before = counts[0]
        krlimage.oilPaint(large, 6, 20, out=large)
        during.append(counts[0] - before)
    ends.set()
    counter.join()
    # Switching to and from the call itself lets it count a few times.
    assert max(during) > 100, during


def test_threads_are_a_number_of_their_own():
    assert krlimage.get_threads() == 1
    for bad in (-1, 1025, "2", None, 1.5):
        with pytest.raises(ValueError, match="expected 0 to 1024 threads"):
            krlimage.set_threads(bad)
    assert krlimage.get_threads() == 1
