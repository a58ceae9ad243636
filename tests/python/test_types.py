"""The types of the package, over code as users write it."""

import re
import subprocess
import sys

from conftest import TREE

SAMPLES = TREE / "tests/python/types"


def mypy(*words):
    """What it says; nothing if all is right. Its cache spares the types of numpy from one call to the next."""
    done = subprocess.run(["/usr/bin/mypy", "--strict", "--show-error-codes", "--no-error-summary",
                           "--python-executable", sys.executable, "--cache-dir", TREE / "build/python/mypy", *words],
                          capture_output=True, text=True, timeout=600)
    return done.stdout + done.stderr


def test_the_package_itself_is_typed():
    assert mypy("-p", "krlimage") == ""


def test_what_is_right_is_accepted_and_runs(tmp_path):
    assert mypy(SAMPLES / "accepted.py") == ""
    done = subprocess.run([sys.executable, SAMPLES / "accepted.py", tmp_path], capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr
    assert "missing.png: " in done.stdout and (tmp_path / "out/a.png").exists()


def test_every_mistake_is_found_where_it_is():
    lines = enumerate((SAMPLES / "refused.py").read_text().splitlines(), 1)
    expected = [(str(number), found[1]) for number, line in lines if (found := re.search("  # (.+)$", line))]
    said = mypy(SAMPLES / "refused.py")
    assert re.findall(r"refused.py:(\d+): error: .* \[(.+)\]$", said, re.M) == expected and len(expected) > 15, said
