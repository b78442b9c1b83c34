#!/usr/bin/env python3
"""Walks at random through adds, deletes, listings and checks, and compares each step with a model.

Runs inside scripts/sandbox. A walk changes several interfaces and their files, by
addrtool and by others. After each step the kernel's table, the state of the
links, all files, both streams and the exit status must be what the model says.

Each leg of a walk starts in a fresh world. A leg that shows a difference is shortened
while it still shows a difference, and printed. --replay walks printed steps again.
"""

import argparse
import collections
import json
import pathlib
import re
import shutil
import subprocess
import sys
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "fault"))

import machine
import steps
from dice import Dice
from model import World
from real_machine import RealMachine

LEG_STEPS = 300
DISTURBANCES = 0.2  # of all steps; the others run addrtool


class Walker:
    def __init__(self):
        self.machine = RealMachine(shutil.which("addrtool"))
        self.machine.reset()
        self.owners = self.machine.possible_owners()
        self.newest_ipv6_first = self.look_at_ipv6_order()
        self.ifconfig_usage = subprocess.run(
            ["/sbin/ifconfig", "lo", "add", "::2/129"], capture_output=True, text=True
        ).stderr
        self.counts = collections.Counter()

    def look_at_ipv6_order(self):
        """Where this kernel puts a new IPv6 address among those of the same scope."""
        self.machine.add_link("eth0", "veth")
        for ip in ("2001:db8::1", "2001:db8::2"):
            self.machine.add_address("eth0", ip, 64, 0, None)
        return self.machine.addresses()["eth0"][1][0][0] == "2001:db8::2"

    def start(self):
        self.machine.reset()
        return World(self.newest_ipv6_first, self.ifconfig_usage)

    def take(self, step, world):
        steps.apply(step, world, self.machine)
        steps.compare(world, self.machine)

    def leg(self, seed, length):
        """Returns the steps taken, and the difference after the last one or None."""
        world, taken = self.start(), []
        for step in choose(Dice(seed, self.owners), world, length):
            taken.append(step)
            try:
                self.take(step, world)
            except steps.Difference as difference:
                return taken, difference
            self.counts[step[0]] += 1
        return taken, None

    def replay(self, walk):
        """Returns the steps up to the first difference, and that difference, or None."""
        world = self.start()
        for number, step in enumerate(walk, start=1):
            try:
                self.take(step, world)
            except steps.Difference as difference:
                return walk[:number], difference
        return walk, None

    def shorten(self, walk, difference):
        """Leaves out ever smaller parts of the walk, then parts of its steps."""
        size = len(walk) // 2
        while size:
            walk, difference, is_shorter = self.try_each(
                walk, difference, lambda walk, start: [walk[:start] + walk[start + size :]], size
            )
            size = size if size == 1 and is_shorter else size // 2
        is_shorter = True
        while is_shorter:
            walk, difference, is_shorter = self.try_each(
                walk,
                difference,
                lambda walk, place: (
                    walk[:place] + [step] + walk[place + 1 :] for step in simpler(walk[place])
                ),
                1,
            )
        return walk, difference

    def try_each(self, walk, difference, variants, stride):
        """Replaces the walk by each variant that still shows a difference."""
        place, is_shorter = 0, False
        while place < len(walk):
            replays = map(self.replay, variants(walk, place))
            found = next((replay for replay in replays if replay[1]), None)
            if found:
                (walk, difference), is_shorter = found, True
            else:
                place += stride
        return walk, difference, is_shorter


def choose(dice, world, length):
    """The steps of a leg. Each is chosen after the one before it was taken."""
    count = 0
    for step in dice.setting(world):
        count += 1
        yield step
    for _ in range(length - count):
        yield dice.disturbance(world) if dice.chance(DISTURBANCES) else dice.run(world)


def simpler(step):
    """The step without some words of its command line or of its file."""
    kind, *operands = step
    if kind == "run":
        arguments, *rest = operands
        yield from ([kind, shorter, *rest] for shorter in without_parts(arguments))
    elif kind == "file" and operands[1]:
        name, text, *rest = operands
        words = re.findall(r"\s*\S+\s*", text)
        yield from ([kind, name, "".join(shorter), *rest] for shorter in without_parts(words))


def without_parts(words):
    """The words without each sequence of them. Many words are left out in larger portions."""
    portion = len(words) // 16 + 1
    for size in range(len(words), 0, -portion):
        for start in range(0, len(words) - size + 1, portion):
            yield words[:start] + words[start + size :]


def report(seed, walk, difference):
    print(f"FAILED: the leg with seed {seed} shows a difference. It takes these {len(walk)} steps:")
    for step in walk:
        print(json.dumps(step))
    print(f"In the last step differ: {difference}")
    print("To walk them again: scripts/sandbox python3 tests/walk/walk.py --replay FILE")


def walk_at_random(walker, count, first_seed):
    begin, left, seed = time.monotonic(), count, first_seed
    while left > 0:
        taken, difference = walker.leg(seed, min(left, LEG_STEPS))
        if difference:
            report(seed, *walker.shorten(taken, difference))
            return 1
        left -= len(taken)
        seed += 1
    print(
        f"{count} steps in {seed - first_seed} legs, {walker.counts['run']} of them runs of"
        f" addrtool, in {time.monotonic() - begin:.0f} s: no difference"
    )
    return 0


def walk_again(walker, path):
    lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    walk, difference = walker.replay([json.loads(line) for line in lines if line.startswith("[")])
    print(f"{len(walk)} steps: {difference or 'no difference'}")
    return 1 if difference else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--steps", type=int, default=100000)
    parser.add_argument("--seed", type=int, default=1, help="of the first leg")
    parser.add_argument("--replay", metavar="FILE", help="walk the steps in FILE, one in a line")
    options = parser.parse_args()
    machine.require_sandbox()
    walker = Walker()
    if options.replay:
        return walk_again(walker, options.replay)
    return walk_at_random(walker, options.steps, options.seed)


if __name__ == "__main__":
    sys.exit(main())
