#!/usr/bin/env python3
"""Simulates a farm that works on more pictures than any machine here can hold.

    python3 bench/farm/simulate.py

Takes the farm from farm.json and what measure.py has measured from measured.json, writes simulated.json, all beside
this file, and prints it as a table in Markdown.

Each node runs one task at a time, with as many jobs as it has processors. A task starts, reads its list and the
ledgers of its shard, and then works at the speed of its processors, or at its share of what the metadata server can
do. A node that fails loses its task, which another node resumes. What the ledger has is not done again.
"""

from __future__ import annotations

import heapq
import json
import math
import random
from dataclasses import dataclass, field
from pathlib import Path
from typing import List, Optional

HERE = Path(__file__).resolve().parent
PLANS = [(lists, shards) for lists in (1, 100) for shards in (1_000, 10_000, 100_000, 1_000_000)]


@dataclass
class Shard:
    pictures: int
    broken: int
    recorded: int = 0  # in its ledgers, the first so many
    runs: int = 0


@dataclass
class Task:
    shard: Shard
    node: int
    begun: float
    works_at: Optional[float] = None  # the work that a node could have done until it began to work on pictures


@dataclass
class Result:
    elapsed: float = 0.0
    recorded: int = 0
    failed: int = 0
    made_again: int = 0
    lost_tasks: int = 0
    runs: int = 0
    starting: float = 0.0  # seconds of nodes
    working: float = 0.0
    times_recorded: List[int] = field(default_factory=list)  # of every picture, if that is asked for


def poisson(chance: random.Random, mean: float) -> int:
    """So many events, where `mean` are expected."""
    if mean > 100:
        return max(0, round(chance.gauss(mean, mean**0.5)))
    count, time = 0, chance.expovariate(1.0)
    while time < mean:
        count, time = count + 1, time + chance.expovariate(1.0)
    return count


def shards_of(farm: dict, count: int, chance: random.Random) -> List[Shard]:
    """Pictures fall into shards by a hash, so shards differ by the root of their size."""
    left, shards = farm["pictures"], []
    for i in range(count):
        mean = left / (count - i)
        last = i == count - 1
        pictures = left if last else min(left, max(0, round(chance.gauss(mean, mean**0.5))))
        left -= pictures
        shards.append(Shard(pictures, min(pictures, poisson(chance, pictures * farm["share of broken pictures"]))))
    return shards


class Simulation:
    def __init__(self, farm: dict, measured: dict, lists: int, shards: int, keeps_ledgers: bool = True,
                 counts_each: bool = False) -> None:
        self.farm, self.measured, self.lists = farm, measured, lists
        self.keeps_ledgers = keeps_ledgers
        self.chance = random.Random(farm["seed"])
        self.shards = shards_of(farm, shards, self.chance)
        self.firsts = {}
        self.result = Result()
        if counts_each:
            self.result.times_recorded = [0] * farm["pictures"]
            first = 0
            for shard in self.shards:
                self.firsts[id(shard)] = first
                first += shard.pictures
        self.waiting = list(reversed(self.shards))
        self.time = 0.0
        self.work = 0.0  # pictures that a node which always works has made by now
        self.events: list = []  # (time, number, what, of which node)
        self.ends: list = []  # (work, number, task)
        self.number = 0
        self.tasks: List[Optional[Task]] = [None] * farm["nodes"]
        self.is_up = [True] * farm["nodes"]
        self.working = 0
        self.unfinished = len(self.shards)
        seconds = measured["usual picture"]["seconds"] + measured["overhead seconds"]
        self.own_speed = farm["processors of a node"] / seconds

    def speed(self) -> float:
        """Pictures in a second, of each node that works."""
        operations = self.measured["metadata operations of a picture"]
        shared = self.farm["metadata operations in a second"] / operations / max(1, self.working)
        return min(self.own_speed, shared)

    def starting_seconds(self, shard: Shard) -> float:
        measured, shards = self.measured, len(self.shards) / self.lists
        return (self.farm["seconds to start a task"] + measured["start-up seconds"]
                + self.farm["pictures"] / self.lists * measured["seconds to read a name in a list"]
                + shards * measured["seconds to read a name in a folder"]
                + shard.recorded * measured["seconds to skip a picture"])

    def later(self, seconds: float, what, node: int) -> None:
        self.number += 1
        heapq.heappush(self.events, (self.time + seconds, self.number, what, node))

    def begin(self, node: int) -> None:
        """Gives a node that is up and free the next shard."""
        if not self.waiting or not self.is_up[node]:
            return
        shard = self.waiting.pop()
        shard.runs += 1
        self.result.runs += 1
        task = self.tasks[node] = Task(shard, node, self.time)
        self.later(self.starting_seconds(shard), lambda of: self.work_on(task), node)

    def work_on(self, task: Task) -> None:
        if self.tasks[task.node] is not task:  # lost before
            return
        self.result.starting += self.time - task.begun
        task.works_at = self.work
        task.begun = self.time
        self.working += 1
        self.number += 1
        heapq.heappush(self.ends, (self.work + task.shard.pictures - task.shard.recorded, self.number, task))

    def record(self, shard: Shard, pictures: int) -> None:
        if self.result.times_recorded:
            first = self.firsts[id(shard)] + shard.recorded
            for i in range(first, first + pictures):
                self.result.times_recorded[i] += 1
        shard.recorded += pictures

    def stop(self, task: Task) -> None:
        self.tasks[task.node] = None
        self.working -= 1
        self.result.working += self.time - task.begun

    def end(self, task: Task) -> None:
        self.unfinished -= 1
        self.stop(task)
        self.record(task.shard, task.shard.pictures - task.shard.recorded)
        self.begin(task.node)

    def fail(self, node: int) -> None:
        self.is_up[node] = False
        self.later(self.farm["seconds until a node is back"], self.repair, node)
        task = self.tasks[node]
        if task is None:
            return
        self.result.lost_tasks += 1
        if task.works_at is None:
            self.result.starting += self.time - task.begun
            self.tasks[node] = None
        else:
            made = min(int(self.work - task.works_at), task.shard.pictures - task.shard.recorded)
            unwritten = math.ceil(self.speed() * self.farm["seconds between writes of a ledger"])
            self.stop(task)
            kept = max(0, made - unwritten) if self.keeps_ledgers else 0
            self.record(task.shard, kept)
            self.result.made_again += made - kept
        self.waiting.append(task.shard)
        for other, up in enumerate(self.is_up):
            if up and self.tasks[other] is None:
                self.begin(other)
                break

    def repair(self, node: int) -> None:
        self.is_up[node] = True
        self.begin(node)
        self.await_failure(node)

    def await_failure(self, node: int) -> None:
        rate = self.farm["failures of a node in a day"] / 86400
        if rate > 0:
            self.later(self.chance.expovariate(rate), self.fail, node)

    def go_on_to(self, time: float) -> None:
        self.work += (time - self.time) * self.speed()
        self.time = time

    def next_end(self) -> float:
        """When the first of the tasks that work comes to its end."""
        while self.ends and self.tasks[self.ends[0][2].node] is not self.ends[0][2]:
            heapq.heappop(self.ends)  # lost
        return self.time + (self.ends[0][0] - self.work) / self.speed() if self.ends else math.inf

    def run(self) -> Result:
        for node in range(self.farm["nodes"]):
            self.begin(node)
            self.await_failure(node)
        while self.unfinished:
            end = self.next_end()
            if self.events and self.events[0][0] < end:
                time, _, what, node = heapq.heappop(self.events)
                self.go_on_to(time)
                what(node)
            else:
                self.go_on_to(end)
                self.end(heapq.heappop(self.ends)[2])
        result = self.result
        result.elapsed = self.time
        result.failed = sum(shard.broken for shard in self.shards)
        result.recorded = sum(shard.recorded for shard in self.shards)
        return result


def row(farm: dict, measured: dict, lists: int, shards: int) -> dict:
    result = Simulation(farm, measured, lists, shards).run()
    pictures = farm["pictures"]
    without = Simulation(farm, measured, lists, shards, keeps_ledgers=False).run()
    operations = pictures * measured["metadata operations of a picture"]
    return {
        "lists": lists,
        "shards": shards,
        "pictures of a shard": round(pictures / shards),
        "hours": round(result.elapsed / 3600, 2),
        "hours without ledgers": round(without.elapsed / 3600, 2),
        "share of time that tasks start": round(result.starting / (result.starting + result.working), 4),
        "tasks lost": result.lost_tasks,
        "pictures made again": result.made_again,
        "pictures made again without ledgers": without.made_again,
        "pictures recorded": result.recorded,
        "pictures failed": result.failed,
        "ledgers of a list": round(result.runs / lists),
        "megabytes of a list's ledgers": round(pictures / lists * measured["ledger bytes of a picture"] / 1e6),
        "metadata operations in a second": round(operations / result.elapsed),
    }


def rows(farm: dict, measured: dict, plans: list = PLANS) -> List[dict]:
    return [row(farm, measured, lists, shards) for lists, shards in plans]


def table(made: List[dict]) -> str:
    def line(words: list) -> str:
        return "| " + " | ".join(words) + " |"

    shown = ["lists", "shards", "pictures of a shard", "hours", "hours without ledgers",
             "share of time that tasks start", "ledgers of a list", "megabytes of a list's ledgers"]
    lines = [line([name.capitalize() for name in shown]), "|" + "---:|" * len(shown)]
    lines += [line([f"{one[name]:.1%}" if name.startswith("share") else f"{one[name]:,}" for name in shown])
              for one in made]
    return "\n".join(lines)


def inputs() -> tuple:
    return tuple(json.loads((HERE / name).read_text()) for name in ("farm.json", "measured.json"))


def main() -> None:
    made = rows(*inputs())
    (HERE / "simulated.json").write_text(json.dumps(made, indent=2) + "\n")
    print(table(made))


if __name__ == "__main__":
    main()
