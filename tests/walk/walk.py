#!/usr/bin/python3
"""Walks at random through adds, deletes, listings and checks, and compares each step with a model.

Runs inside scripts/sandbox. A walk changes several interfaces and their files, by
addrtool and by others. After each step the kernel's table, the state of the
links, all files, both streams and the exit status must be what the model says.

Each leg of a walk starts in a fresh world. A leg that shows a difference is shortened
while it still shows a difference, and printed. --replay walks printed steps again.
"""

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
        too_long = ["/sbin/ifconfig", "lo", "add", "::2/129"]
        self.ifconfig_usage = subprocess.run(too_long, capture_output=True, text=True).stderr

    def look_at_ipv6_order(self):
        """Where this kernel puts a new IPv6 address among those of the same scope."""
        self.machine.change(["link", "eth0", "veth"])
        for ip in ("2001:db8::1", "2001:db8::2"):
            self.machine.change(["ipv6", "eth0", ip, 64])
        return self.machine.addresses()["eth0"][1][0][0] == "2001:db8::2"

    def leg(self, seed, length):
        return self.walk(lambda world: choose(Dice(seed, self.owners), world, length))

    def replay(self, walk):
        return self.walk(lambda _: walk)

    def walk(self, choose_steps):
        """Returns the steps taken, and the difference after the last one or None."""
        self.machine.reset()
        world, taken = World(self.newest_ipv6_first, self.ifconfig_usage), []
        for step in choose_steps(world):
            taken.append(step)
            try:
                steps.take(step, world, self.machine)
            except steps.Difference as difference:
                return taken, difference
        return taken, None

    def shorten(self, walk, difference):
        """Leaves out ever smaller parts of the walk, then parts of its steps."""
        size = len(walk) // 2
        while True:
            walk, difference, is_shorter = self.try_each(walk, difference, size)
            if size > 1 or not is_shorter:
                if size == 0:
                    return walk, difference
                size //= 2

    def try_each(self, walk, difference, size):
        """Leaves out each part of that size, or of size 0 parts of each step, if a difference
        stays."""
        place, is_shorter = 0, False
        while place < len(walk):
            variants = [walk[:place] + walk[place + size :]] if size else simpler(walk, place)
            found = next((replay for replay in map(self.replay, variants) if replay[1]), None)
            if found:
                (walk, difference), is_shorter = found, True
            else:
                place += max(size, 1)
        return walk, difference, is_shorter


def choose(dice, world, length):
    """The steps of a leg. Each is chosen after the one before it was taken."""
    count = 0
    for count, step in enumerate(dice.setting(world), start=1):
        yield step
    for _ in range(length - count):
        yield dice.disturbance(world) if dice.chance(DISTURBANCES) else dice.run(world)


def simpler(walk, place):
    """The walks with a step without some words of its command line or of its file."""
    match walk[place]:
        case "run", arguments, *rest:
            steps = (["run", shorter, *rest] for shorter in without_parts(arguments))
        case "file", name, str(text), *rest:
            words = without_parts(re.findall(r"\s*\S+\s*", text))
            steps = (["file", name, "".join(shorter), *rest] for shorter in words)
        case _:
            steps = []
    return (walk[:place] + [step] + walk[place + 1 :] for step in steps)


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
    begin, left, seed, runs = time.monotonic(), count, first_seed, 0
    while left > 0:
        taken, difference = walker.leg(seed, min(left, LEG_STEPS))
        if difference:
            report(seed, *walker.shorten(taken, difference))
            return 1
        runs += sum(step[0] == "run" for step in taken)
        left -= len(taken)
        seed += 1
    print(
        f"{count} steps in {seed - first_seed} legs, {runs} of them runs of addrtool,"
        f" in {time.monotonic() - begin:.0f} s: no difference"
    )
    return 0


def walk_again(walker, path):
    lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    walk, difference = walker.replay([json.loads(line) for line in lines if line.startswith("[")])
    print(f"{len(walk)} steps: {difference or 'no difference'}")
    return 1 if difference else 0


def main():
    options = machine.parse_options(__doc__, steps=100000, seed=1, replay="")
    walker = Walker()
    if options.replay:
        return walk_again(walker, options.replay)
    return walk_at_random(walker, options.steps, options.seed)


if __name__ == "__main__":
    sys.exit(main())
