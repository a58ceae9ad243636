#!/usr/bin/env python3
"""Measures what a farm pays for each process and each picture, beside other programs.

    python3 bench/farm/measure.py build/release/player/krlimage

Prints tables in Markdown and writes measured.json beside this file, from which simulate.py takes its times. Needs the
Debian packages libvips-tools, graphicsmagick, ffmpeg and strace. Times are processor time, since that is hardly
changed by what else runs on the machine; the median of several runs, which take turns.
"""

from __future__ import annotations

import argparse
import datetime
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

TURNS = 15
SMALL = 4000  # pictures of one pixel
PIXEL = b"P7\nWIDTH 1\nHEIGHT 1\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n" + bytes([10, 20, 30, 255])
CHAIN = ["contrast(1.2, #RGB)", "fastGaussianBlur(5, #RGB)"]


@dataclass
class Run:
    processor: float
    elapsed: float


def run(words: list, folder: Path) -> Run:
    """Runs a command, which must succeed."""
    begin = time.perf_counter()
    process = subprocess.Popen(words, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    errors = process.stderr.read()
    _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        sys.exit(f"{' '.join(map(str, words))}: exit code {process.returncode}: {errors.decode(errors='replace')}")
    return Run(used.ru_utime + used.ru_stime, time.perf_counter() - begin)


def taking_turns(commands: dict, folder: Path) -> dict:
    """The median run of each command."""
    runs = {name: [] for name in commands}
    for _ in range(TURNS):
        for name, words in commands.items():
            runs[name].append(run(words, folder))
    return {name: Run(statistics.median(one.processor for one in made), statistics.median(one.elapsed for one in made))
            for name, made in runs.items()}


def start_up(krlimage: str, folder: Path) -> dict:
    """Three tasks in four programs."""
    (folder / "1.pam").write_bytes(PIXEL)
    (folder / "1.ppm").write_bytes(b"P6\n1 1\n255\n" + bytes([10, 20, 30]))
    run([krlimage, "apply", "1.pam", "-o", "1.png", "invert(#RGB)"], folder)
    quiet = ["ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-i"]
    tasks = {
        "print the version": {"krlimage": [krlimage, "--version"], "vips": ["vips", "--version"],
                              "gm": ["gm", "version"], "ffmpeg": ["ffmpeg", "-version"]},
        "invert a portable map of 1 by 1 pixel": {
            "krlimage": [krlimage, "apply", "1.ppm", "-o", "krl.pam", "invert(#RGB)"],
            "vips": ["vips", "invert", "1.ppm", "vips.ppm"], "gm": ["gm", "convert", "1.ppm", "-negate", "gm.ppm"],
            "ffmpeg": quiet + ["1.ppm", "-vf", "negate", "ff.ppm"]},
        "invert a PNG of 1 by 1 pixel": {
            "krlimage": [krlimage, "apply", "1.png", "-o", "krl.png", "invert(#RGB)"],
            "vips": ["vips", "invert", "1.png", "vips.png"], "gm": ["gm", "convert", "1.png", "-negate", "gm.png"],
            "ffmpeg": quiet + ["1.png", "-vf", "negate", "-update", "1", "ff.png"]}}
    return {task: taking_turns(commands, folder) for task, commands in tasks.items()}


def metadata_operations(krlimage: str, folder: Path) -> float:
    """Calls of the system that name the picture or its result."""
    source, trace = folder / "traced", folder / "trace"
    source.mkdir()
    for i in range(100):
        (source / f"{i}.pam").write_bytes(PIXEL)
    run(["strace", "-f", "-o", trace, "-e", "trace=%file", krlimage, "apply", source, "-o", folder / "traced-out",
         "--ledger", "invert(#RGB)"], folder)
    return sum(".pam\"" in line for line in trace.read_text().splitlines()) / 100


def small_pictures(krlimage: str, folder: Path) -> dict:
    """What apply takes for a picture besides decoding, the effect and encoding, which a pixel does not take."""
    source = folder / "small"
    source.mkdir()
    for i in range(SMALL):
        (source / f"{i}.pam").write_bytes(PIXEL)
    alone = statistics.median(run([krlimage, "apply", "1.pam", "-o", "one.pam", "invert(#RGB)"], folder).processor
                              for _ in range(TURNS))
    apply = [krlimage, "apply", "small", "-o", "out", "invert(#RGB)"]
    ways = {"a picture": ["--jobs", "1"], "the same with --jobs 2": ["--jobs", "2"],
            "the same with --ledger": ["--jobs", "1", "--ledger"],
            "a picture that --resume skips": ["--jobs", "1", "--resume"]}
    taken = {}
    for way, words in ways.items():
        runs = []
        for _ in range(3):
            if "--resume" not in words:
                shutil.rmtree(folder / "out", ignore_errors=True)
            runs.append(run(apply + words, folder).processor)
        taken[way] = (min(runs) - alone) / SMALL
    return taken


def ledger_bytes(folder: Path) -> float:
    files = list((folder / "out/.krlimage/ledger").glob("*.jsonl"))
    lines = [line for file in files for line in file.read_text().splitlines() if '"name"' in line]
    return sum(map(len, lines)) / len(lines) + 1


def usual_picture(krlimage: str, picture: Path, folder: Path) -> dict:
    """A photograph of six megapixels from JPEG to JPEG."""
    source = folder / "usual"
    source.mkdir()
    run([krlimage, "apply", picture, "-o", source / "0.jpg", "--resize", "3000x2000", "brightness(0, #RGB)"], folder)
    for i in range(1, 6):
        os.link(source / "0.jpg", source / f"{i}.jpg")
    apply = [krlimage, "apply", "--jobs", "1", "--threads", "st", *CHAIN]
    one = run([*apply, "usual/0.jpg", "-o", "usual.jpg"], folder)
    six = run([*apply, "usual", "-o", "usual-out"], folder)
    return {"seconds": (six.processor - one.processor) / 5, "bytes read": (source / "0.jpg").stat().st_size,
            "bytes written": (folder / "usual.jpg").stat().st_size}


def listed_name(krlimage: str, folder: Path) -> float:
    """Reading a name in a list, which is of another shard."""
    seconds = []
    for names in (100_000, 1_100_000):
        with open(folder / "list", "w") as file:
            file.writelines(f"archive/{i // 1000:06}/{i:09}.jpg\n" for i in range(names))
        seconds.append(run([krlimage, "apply", "--from", "list", "--root", ".", "-o", "none", "--dry-run", "--shard",
                            "1/1000000", "sepia"], folder).processor)
    return (seconds[1] - seconds[0]) / 1_000_000


def listed_ledger(folder: Path) -> float:
    """Reading a folder's entry, of which a ledger's name is one."""
    many = folder / "many"
    many.mkdir()
    for i in range(100_000):
        (many / f"{i}").touch()
    begin = time.process_time()
    os.listdir(many)
    return (time.process_time() - begin) / 100_000


def table(tasks: dict) -> str:
    programs = list(next(iter(tasks.values())))
    lines = ["| Milliseconds to | " + " | ".join(programs) + " |", "|---|" + "---:|" * len(programs)]
    for task, runs in tasks.items():
        lines.append(f"| {task} | " + " | ".join(f"{runs[name].processor * 1000:.1f}" for name in programs) + " |")
    return "\n".join(lines)


def main() -> None:
    parser = argparse.ArgumentParser(description="Measures what a farm pays for each process and each picture.")
    parser.add_argument("krlimage", type=Path)
    krlimage = str(parser.parse_args().krlimage.resolve())
    tree = Path(__file__).resolve().parents[2]
    with tempfile.TemporaryDirectory() as place:
        folder = Path(place)
        tasks = start_up(krlimage, folder)
        taken = small_pictures(krlimage, folder)
        measured = {
            "date": datetime.date.today().isoformat(),
            "start-up seconds": tasks["invert a PNG of 1 by 1 pixel"]["krlimage"].processor,
            "usual picture": usual_picture(krlimage, tree / "examples/pictures/landscape.png", folder),
            "overhead seconds": taken["the same with --ledger"],
            "seconds to skip a picture": taken["a picture that --resume skips"],
            "seconds to read a name in a list": listed_name(krlimage, folder),
            "seconds to read a name in a folder": listed_ledger(folder),
            "ledger bytes of a picture": ledger_bytes(folder),
            "metadata operations of a picture": metadata_operations(krlimage, folder),
        }
    print(table(tasks), end="\n\n| Microseconds of apply for | |\n|---|---:|\n")
    for way, seconds in taken.items():
        print(f"| {way} | {seconds * 1e6:.0f} |")
    (Path(__file__).parent / "measured.json").write_text(json.dumps(measured, indent=2) + "\n")


if __name__ == "__main__":
    main()
