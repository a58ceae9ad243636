#!/usr/bin/env python3
"""Processes the pictures of a folder on a Dask cluster, or without one on the processors of this machine.

    python3 dask_batch.py IN OUT 'contrast(1.3, #RGB)' 'vignette(blur: 160)'
    python3 dask_batch.py --scheduler tcp://head:8786 IN OUT sepia

IN and OUT are folders that every worker sees, and every worker has the package krlimage. Results that are newer
than their picture are left as they are, so running it again finishes what failed. To change the calls, use another
OUT. Exit code: 0 if every picture is done, otherwise 1.
"""

from __future__ import annotations

import argparse
import sys
import time
from pathlib import Path
from typing import Iterator, List, Sequence, Tuple

import dask.bag
from distributed import Client, LocalCluster, as_completed

import krlimage

EXTENSIONS = (".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp")
Pair = Tuple[Path, Path]


def pairs(folder: Path, out: Path) -> List[Pair]:
    """Every picture of the folder, and of those in it, with its result."""
    found = sorted(path for path in folder.rglob("*") if path.suffix.lower() in EXTENSIONS)
    return [(path, out / path.relative_to(folder)) for path in found if not path.name.startswith(".")]


def is_done(pair: Pair) -> bool:
    source, target = pair
    return target.exists() and target.stat().st_mtime >= source.stat().st_mtime


def process(pair: Pair, calls: Sequence[str], retries: int) -> Tuple[Path, str]:
    """Works on one picture. Returns it, and why it failed. Runs on a worker."""
    source, target = pair
    if is_done(pair):  # by a worker that was lost before it could say so
        return source, ""
    target.parent.mkdir(parents=True, exist_ok=True)
    why = ""
    for attempt in range(retries + 1):
        why = krlimage.batch(source, calls, target, jobs=1, progress=False).failed.get(source, "")
        if not why.startswith("[Errno"):  # the picture's fault and not that of the file system
            break
        time.sleep(min(0.1 * 2**attempt, 10) if attempt < retries else 0)
    return source, why


def outcomes(client: Client, todo: List[Pair], calls: Sequence[str], retries: int,
             at_once: int) -> Iterator[Tuple[Path, str]]:
    """The pictures and why they failed, as they come in.

    Dask gives the part of a lost worker to another. A part that loses too many workers fails, and no other does.
    """
    bag = dask.bag.from_sequence(todo, partition_size=at_once)
    parts = {}
    for number, part in enumerate(bag.map(process, calls=calls, retries=retries).to_delayed()):
        parts[client.compute(part, retries=retries)] = todo[number * at_once:(number + 1) * at_once]
    for future in as_completed(parts):
        if future.status == "finished":
            yield from future.result()
        else:
            for pair in parts[future]:
                yield pair[0], "" if is_done(pair) else str(future.exception())


def remove_unfinished(todo: List[Pair]) -> None:
    """Removes what lost workers left beside their results."""
    for target in {target for _, target in todo}:
        for left in target.parent.glob(f".{target.name}.*"):
            left.unlink(missing_ok=True)


def main() -> int:
    parser = argparse.ArgumentParser(description="Processes the pictures of a folder on a Dask cluster.")
    parser.add_argument("input", type=Path, metavar="IN")
    parser.add_argument("output", type=Path, metavar="OUT")
    parser.add_argument("calls", nargs="+", metavar="CALL")
    parser.add_argument("--scheduler", help="address of a cluster (default: one on this machine)")
    parser.add_argument("--workers", type=int, help="workers on this machine (default: one for each processor)")
    parser.add_argument("--retries", type=int, default=3, help="attempts after one that fails (default: 3)")
    parser.add_argument("--at-once", type=int, default=16, help="pictures that a worker takes at once (default: 16)")
    chosen = parser.parse_args()
    every = pairs(chosen.input, chosen.output)
    todo = [pair for pair in every if not is_done(pair)]
    cluster = chosen.scheduler or LocalCluster(n_workers=chosen.workers, threads_per_worker=1,
                                               dashboard_address=None)
    failed = {}
    with Client(cluster) as client:
        for source, why in outcomes(client, todo, chosen.calls, chosen.retries, chosen.at_once):
            if why:
                failed[source] = why
                print(f"{source}: {why}", file=sys.stderr)
    if not chosen.scheduler:
        cluster.close()
    remove_unfinished(todo)
    print(f"{len(every)} pictures: {len(every) - len(todo)} done before, {len(todo) - len(failed)} done now, "
          f"{len(failed)} failed")
    return 1 if failed or not every else 0


if __name__ == "__main__":
    sys.exit(main())
