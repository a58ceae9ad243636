#!/usr/bin/env python3
"""units.py BUILD OUT PATTERN...: makes few sources of many for the linter.

The linter spends nearly all of its time on the headers of the standard library, so that a source that includes a
folder's files takes little longer than one of them. Writes such sources to OUT, one for each folder and set of flags
in BUILD/compile_commands.json whose files match a PATTERN, and OUT/compile_commands.json for them. Files that do not
compile together, since they give one name to two things of their own, come into different ones.
"""

import json
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

MOST_TOGETHER = 16


def flags_of(command: dict) -> tuple:
    """What the file is compiled with, without names of files and the precompiled header, which GCC made."""
    words = shlex.split(command["command"])
    first = next(i for i, word in enumerate(words) if word.startswith("-"))
    kept, skips = [], 0
    for word in words[first:]:
        if skips:
            skips -= 1
        elif word in ("-o", "-c", "-include"):
            skips = 1
        elif word != "-Winvalid-pch":
            kept.append(word)
    return tuple(kept)


def main():
    build, out, patterns = Path(sys.argv[1]), Path(sys.argv[2]).resolve(), sys.argv[3:]
    out.mkdir(parents=True, exist_ok=True)
    for old in out.glob("*.cpp"):
        old.unlink()
    groups, seen = {}, set()
    for command in json.loads((build / "compile_commands.json").read_text()):
        file = command["file"]
        if file in seen or not any(re.search(pattern, file) for pattern in patterns):
            continue
        seen.add(file)
        groups.setdefault((Path(file).parent, flags_of(command), command["directory"]), []).append(file)
    if not groups:
        sys.exit(f"no source file matches {' or '.join(patterns)}")

    def compiles(unit, flags, directory) -> bool:
        tried = subprocess.run(["clang++", *flags, "-w", "-Wno-error", "-fsyntax-only", unit], cwd=directory,
                               stderr=subprocess.DEVNULL)
        return tried.returncode == 0

    def commands_of(name: str, files: list, flags: tuple, directory: str) -> list:
        source = files[0]
        if len(files) > 1:
            source = out / f"{name}.cpp"
            source.write_text("".join(f'#include "{file}"\n' for file in files))
            if not compiles(source, flags, directory):
                source.unlink()
                half = len(files) // 2
                return (commands_of(name + "a", files[:half], flags, directory)
                        + commands_of(name + "b", files[half:], flags, directory))
        return [{"directory": directory, "file": str(source),
                 "command": shlex.join(["clang++", *flags, "-c", str(source)])}]

    def commands_of_group(numbered) -> list:
        number, ((folder, flags, directory), files) = numbered
        files = sorted(files)
        return [command for first in range(0, len(files), MOST_TOGETHER)
                for command in commands_of(f"{number:03}-{folder.name}-{first}", files[first:first + MOST_TOGETHER],
                                           flags, directory)]

    with ThreadPoolExecutor() as pool:
        commands = [command for group in pool.map(commands_of_group, enumerate(groups.items()))
                    for command in group]
    (out / "compile_commands.json").write_text(json.dumps(commands, indent=1))
    print(len(seen))


if __name__ == "__main__":
    main()
