"""What is in the wheel, and what it needs."""

import re
import subprocess
import sys
import sysconfig
from importlib import metadata
from pathlib import Path

from conftest import TREE

WHEEL = metadata.distribution("krlimage")


def files():
    return {str(file) for file in WHEEL.files if "__pycache__" not in file.parts and file.parts[0] == "krlimage"}


def native():
    return next(Path(WHEEL.locate_file(file)) for file in WHEEL.files if file.match("krlimage/_native.*.so"))


def test_its_tag_is_that_of_this_interpreter_and_machine():
    version = f"cp{sys.version_info.major}{sys.version_info.minor}"
    platform = re.sub("[-.]", "_", sysconfig.get_platform())
    lines = WHEEL.read_text("WHEEL").splitlines()
    assert [line for line in lines if line.startswith("Tag: ")] == [f"Tag: {version}-{version}-{platform}"]
    assert "Root-Is-Purelib: false" in lines


def test_it_holds_all_it_needs_and_no_sources():
    written = {path.name for path in (TREE / "bindings/python/krlimage").glob("*") if path.is_file()}
    samples = {f"samples/{path.name}" for path in (TREE / "examples/pictures").glob("*.png")}
    expected = written | samples | {"_effects.py", "LICENSE", native().name}
    assert len(samples) == 4 and {"py.typed", "_native.pyi"} < written
    assert files() == {f"krlimage/{name}" for name in expected}


def test_it_needs_numpy_pillow_and_the_compilers_libraries_alone():
    assert {need for need in WHEEL.requires if "extra" not in need} == {"numpy", "Pillow"}
    dynamic = subprocess.run(["readelf", "-d", native()], capture_output=True, text=True, check=True).stdout
    libraries = set(re.findall(r"NEEDED.*\[(\w+)", dynamic))
    assert libraries and libraries <= {"libstdc", "libm", "libgcc_s", "libc", "ld"}
    assert "RPATH" not in dynamic and "RUNPATH" not in dynamic


def test_it_knows_no_folder_of_the_machine_that_built_it():
    for path in (Path(WHEEL.locate_file(file)) for file in files()):
        assert str(TREE).encode() not in path.read_bytes(), path


def test_it_works_from_an_empty_folder(tmp_path):
    script = "import krlimage; print(krlimage.sepia(krlimage.sample()).shape, krlimage.__file__)"
    done = subprocess.run([sys.executable, "-I", "-c", script], cwd=tmp_path, capture_output=True, text=True, check=True)
    assert done.stdout.startswith(f"(640, 960, 4) {sys.prefix}/")
