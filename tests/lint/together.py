#!/usr/bin/env python3
"""together.py BUILD OUT CHECKS PATTERN...: runs the linter over many files at a time.

The linter spends nearly all of its time on the headers of the standard library, so that a source that includes many
files takes little longer than one of them. Makes such sources in OUT, each of files that are compiled with the same
flags in BUILD/compile_commands.json and match a PATTERN. Files that give one name to two things of their own are kept
apart; what still does not compile together is halved. Prints the findings, each once, and what passed and failed.
"""

import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

MOST_TOGETHER = 24


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


def own_names(file: str) -> set:
    """What a file names for itself alone, as far as the beginnings of lines in its unnamed namespaces show."""
    unnamed = re.compile(r"^namespace \{$(.*?)^\}  // namespace$", re.MULTILINE | re.DOTALL)
    inner = "\n".join(unnamed.findall(Path(file).read_text()))
    return set(re.findall(r"^(?:struct|class|enum class|enum|using) (\w+)", inner, re.MULTILINE)
               + re.findall(r"^[A-Za-z][^\n=;{(]*?(\w+)(?: = |\(|\[|\{)", inner, re.MULTILINE))


def units(build: Path, patterns: list) -> list:
    """Lists of files with their flags and folder, none with two files that name something of their own alike."""
    groups, seen = {}, set()
    for command in json.loads((build / "compile_commands.json").read_text()):
        file = command["file"]
        if file in seen or not any(re.search(pattern, file) for pattern in patterns):
            continue
        seen.add(file)
        groups.setdefault((flags_of(command), command["directory"]), []).append(file)
    made = []
    for (flags, directory), files in groups.items():
        together = []  # files and the names in them
        for file in sorted(files):
            names = own_names(file)
            unit = next((unit for unit in together if len(unit[0]) < MOST_TOGETHER and not unit[1] & names), None)
            if unit is None:
                unit = ([], set())
                together.append(unit)
            unit[0].append(file)
            unit[1].update(names)
        made += [(unit, flags, directory) for unit, _ in together]
    return sorted(made, key=lambda unit: -len(unit[0]))  # the longest first, so that all processors end together


def findings(name: str, files: list, flags: tuple, directory: str, out: Path, checks: str) -> set:
    source = Path(files[0])
    if len(files) > 1:
        source = out / f"{name}.cpp"
        source.write_text("".join(f'#include "{file}"\n' for file in files))
    tried = subprocess.run(
        ["clang-tidy", "-quiet", f"-checks={checks}", str(source), "--", *flags, "-w", "-ferror-limit=1"],
        cwd=directory, text=True, capture_output=True)
    lines = set(re.findall(r"^.*(?:warning|error): .*$", tried.stdout, re.MULTILINE))
    if len(files) > 1 and any("clang-diagnostic-error" in line for line in lines):
        half = len(files) // 2
        return (findings(name + "a", files[:half], flags, directory, out, checks)
                | findings(name + "b", files[half:], flags, directory, out, checks))
    if tried.returncode and not lines:
        lines.add(f"{source}: error: {(tried.stderr.strip().splitlines() or ['the linter failed'])[-1]}")
    return lines


def main():
    build, out, checks, patterns = Path(sys.argv[1]), Path(sys.argv[2]).resolve(), sys.argv[3], sys.argv[4:]
    out.mkdir(parents=True, exist_ok=True)
    for old in out.glob("*.cpp"):
        old.unlink()
    todo = units(build, patterns)
    if not todo:
        sys.exit(f"no source file matches {' or '.join(patterns)}")
    with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        found = sorted(set().union(*pool.map(
            lambda unit: findings(f"{unit[0]:03}", *unit[1], out, checks), enumerate(todo))))
    print(*found, sep="\n" if found else "")
    print(f"{0 if found else sum(len(files) for files, _, _ in todo)} passed, {len(found)} failed")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
