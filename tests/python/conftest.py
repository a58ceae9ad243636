"""What the tests share. `./test --python` sets the folders."""

import os
import subprocess
from pathlib import Path

import numpy as np
import pytest

TREE = Path(__file__).resolve().parents[2]


@pytest.fixture
def picture():
    """RGBA, with every level somewhere, opaque."""
    made = np.random.default_rng(1).integers(0, 256, (48, 64, 4), np.uint8)
    made[..., 3] = 255
    return made


@pytest.fixture(scope="session")
def hash_pictures():
    """The folder of the sample pictures that the table of hashes is for."""
    return Path(os.environ["KRL_HASH_PICTURES"])


@pytest.fixture(scope="session")
def command():
    """Runs the command line of the same build."""
    def run(*words):
        return subprocess.run([os.environ["KRL_COMMAND"], *map(str, words)], capture_output=True, text=True, timeout=120)
    return run
