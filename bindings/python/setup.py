"""Builds the extension module by CMake, and from its catalogue the functions of the package.

KRLIMAGE_PREFIX names a folder where `cmake --install` has put the libraries of this very tree; without
it they are built.
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext
from setuptools.command.sdist import sdist

HERE = Path(__file__).resolve().parent
# A source archive holds the engine's sources beside this file, a checkout above it.
TREE = HERE / "tree" if (HERE / "tree").exists() else HERE.parents[1]
TREE_PARTS = ["CMakeLists.txt", "LICENSE", "cmake", "include", "src", "player", "looks", "examples/pictures"]


def version():
    return re.search(r"project\(krlimage VERSION (\S+)", (TREE / "CMakeLists.txt").read_text()).group(1)


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        package = Path(self.get_ext_fullpath(extension.name)).resolve().parent
        package.mkdir(parents=True, exist_ok=True)
        build = Path(self.build_temp).resolve()
        self.run_cmake(build, package)
        shutil.copytree(TREE / "examples/pictures", package / "samples", dirs_exist_ok=True,
                        ignore=lambda folder, names: [name for name in names if not name.endswith(".png")])
        shutil.copy2(TREE / "LICENSE", package)
        # The package's Python is not yet in this place if nothing but the extension is built.
        subprocess.run([sys.executable, HERE / "generate.py", package], check=True)

    def run_cmake(self, build, package):
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "CMAKE_LIBRARY_OUTPUT_DIRECTORY": package,
            "Python3_EXECUTABLE": sys.executable,
            "KRL_TREE": TREE,
            "KRL_PREFIX": os.environ.get("KRLIMAGE_PREFIX", ""),
        }
        if shutil.which("ccache"):
            options["CMAKE_CXX_COMPILER_LAUNCHER"] = "ccache"
        generator = ["-G", "Ninja"] if shutil.which("ninja") else []
        # Afresh, since what an earlier build found may lie in another prefix, or in one that is gone.
        subprocess.run(["cmake", "--fresh", "-S", HERE, "-B", build, *generator,
                        *(f"-D{name}={value}" for name, value in options.items())], check=True)
        subprocess.run(["cmake", "--build", build, "--parallel"], check=True)


class SelfContained(sdist):
    """A source archive with the engine's sources."""

    def make_release_tree(self, base_dir, files):
        super().make_release_tree(base_dir, files)
        for name in ["CMakeLists.txt", "generate.py", "native"]:
            self.copy_into(HERE / name, Path(base_dir) / name)
        for name in TREE_PARTS:
            self.copy_into(TREE / name, Path(base_dir) / "tree" / name)

    def copy_into(self, source, target):
        target.parent.mkdir(parents=True, exist_ok=True)
        if source.is_dir():
            shutil.copytree(source, target, dirs_exist_ok=True)
        else:
            shutil.copy2(source, target)


setup(
    version=version(),
    ext_modules=[Extension("krlimage._native", [])],
    cmdclass={"build_ext": CMakeBuild, "sdist": SelfContained},
)
