#!/usr/bin/env python3
"""Runs several adds and deletes at the same time, as a panel may, and looks for torn files.

Runs inside scripts/sandbox. There is no lock, so changes do get lost; what may be
lost is written down here as one rule for each kind of round:

  - adds only: what was there before stays, in the running system and in the files;
    each running alias has a file; each IPv6 address runs, and the file lists at
    least one of the round's;
  - deletes only: what nobody deletes stays, in both; each deleted alias has lost its
    file, though another delete may have brought the alias itself back; the file has
    lost at least one of the round's IPv6 addresses;
  - mixed: a status is 0, or 1 with a message.

In all rounds, after them and for the readers that look at the files meanwhile, every
alias file is a whole one, the interface file holds its foreign lines and well-formed
lists, and no temporary file outlives the round.
"""

import argparse
import multiprocessing
import random
import re
import subprocess
import sys

from machine import (
    SCRIPTS,
    alias_text,
    is_temporary,
    list_line,
    path_of,
    read_files,
    require_sandbox,
    set_addresses,
    shown_addresses,
)

INTERFACE_FILE = path_of("eth0")
AT_ONCE = 8  # processes of a round
READERS = 2
TIMEOUT_SECONDS = 30

# No edit may change these lines, which surround the edited ones. There are enough of them to make
# an edit need many reads and writes, so that other processes can interleave.
FOREIGN_LINES = [
    "# first",
    "DEVICE=eth0",
    *(f"# line {number}" for number in range(5000)),
    "IPV6INIT=yes",
    "GATEWAY='192.0.2.254'  # last",
]
LIST_STEM = "IPV6ADDR"

ALIAS_FILE = re.compile(
    r'DEVICE="(eth0:[0-9]+)"\nIPADDR="192\.0\.2\.[0-9]+"\nNETMASK="255\.255\.255\.0"\n'
)
PRIMARY_LINE = re.compile(r"IPV6ADDR=2001:db8::[0-9a-f]+/[0-9]+")
LIST_LINE = re.compile(
    r'IPV6ADDR_SECONDARIES="2001:db8::[0-9a-f]+/[0-9]+( 2001:db8::[0-9a-f]+/[0-9]+)*"'
)


def interface_file_faults(text):
    if not text.endswith("\n"):
        yield "no line feed at the end"
    lines = text.splitlines()
    if [line for line in lines if not line.startswith(LIST_STEM)] != FOREIGN_LINES:
        yield "the foreign lines are changed"
    ours = [line for line in lines if line.startswith(LIST_STEM)]
    if not ours or not PRIMARY_LINE.fullmatch(ours[0]):
        yield "no well-formed primary"
    if len(ours) > 2 or not all(LIST_LINE.fullmatch(line) for line in ours[1:]):
        yield "no well-formed list"


def file_faults(name, text):
    if name == INTERFACE_FILE.name:
        yield from interface_file_faults(text)
        return
    match = ALIAS_FILE.fullmatch(text)
    if not match or name != f"ifcfg-{match.group(1)}":
        yield "not a whole alias file"


def read_until_told(stop, results):
    looks, torn = 0, []
    while not stop.is_set():
        for name, text in read_files().items():
            if is_temporary(name):
                continue  # still being written, which is what it is for
            looks += 1
            torn += [
                f"a reader saw {name} torn ({fault}): {text[:200]!r}"
                for fault in file_faults(name, text)
            ]
        if not INTERFACE_FILE.exists():
            torn.append("a reader missed the interface file")
    results.put((looks, torn[:10]))


class State:
    """The running system and the files, by label and by address."""

    def __init__(self):
        shown = "\n".join(shown_addresses())
        self.files = read_files()
        self.aliases = dict(
            reversed(pair) for pair in re.findall(r"inet ([0-9.]+)/24 .*?(eth0:[0-9]+)\\", shown)
        )
        self.ipv6 = set(re.findall(r"inet6 (\S+)/64", shown))
        self.listed = set(re.findall(r"[\" =](2001:db8::[0-9a-f]+)/", self.files["ifcfg-eth0"]))

    def alias_files(self):
        return {
            name.removeprefix("ifcfg-"): text
            for name, text in self.files.items()
            if name != INTERFACE_FILE.name and not is_temporary(name)
        }


def write_whole(path, text):
    """Renames the file into place, so that a reader never sees a part of it."""
    new = SCRIPTS.parent / "new"
    new.write_text(text)
    new.rename(path)


def start_over(aliases, ipv6):
    """Sets the main addresses and that many aliases and secondary IPv6 addresses, in the kernel and
    in the files."""
    for path in SCRIPTS.iterdir():
        if path != INTERFACE_FILE:
            path.unlink()
    addresses = ["192.0.2.1/24", "2001:db8::1/64 nodad"]
    for number in range(1, aliases + 1):
        label, address = f"eth0:{number}", f"192.0.2.{number + 1}"
        addresses.append(f"{address}/24 label {label}")
        write_whole(path_of(label), alias_text(label, address))
    listed = [f"2001:db8::{number:x}" for number in range(2, ipv6 + 2)]
    addresses += [f"{address}/64 nodad" for address in listed]
    ours = "IPV6ADDR=2001:db8::1/64\n" + list_line(listed)
    lines = [line + "\n" for line in FOREIGN_LINES]
    write_whole(INTERFACE_FILE, "".join(lines[:2]) + ours + "".join(lines[2:]))
    set_addresses(addresses)


def run_at_once(commands):
    """Starts all commands, then waits for all. Returns (command, process, stderr) of each."""
    started = [
        (
            command,
            subprocess.Popen(
                ["addrtool", *command], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
            ),
        )
        for command in commands
    ]
    return [
        (command, process, process.communicate(timeout=TIMEOUT_SECONDS)[1])
        for command, process in started
    ]


def add_ipv4(number):
    return ("--add", "eth0", f"192.0.2.{number}", "255.255.255.0")


def add_ipv6(number):
    return ("--add", "eth0", f"2001:db8::{number:x}", "64")


class Round:
    def __init__(self, dice):
        self.dice = dice
        self.figures = {}

    def count(self, what, number):
        self.figures[what] = self.figures.get(what, 0) + number

    def run(self, commands):
        self.before = State()
        for command, process, err in run_at_once(commands):
            self.count("processes", 1)
            if process.returncode not in (0, 1):
                yield f"{command} ended with {process.returncode}: {err!r}"
            elif process.returncode == 1:
                self.count("refused with a message", 1)
                if not err.endswith("\n") or len(err) < 2:
                    yield f"{command} failed without a message"
        self.after = State()
        for name, text in self.after.files.items():
            if is_temporary(name):
                yield f"left behind: {name}"
            else:
                yield from (
                    f"{name} is torn ({fault}): {text[:200]!r}" for fault in file_faults(name, text)
                )

    def adds(self):
        start_over(aliases=3, ipv6=3)
        ipv4, ipv6 = range(100, 100 + AT_ONCE // 2), range(0x100, 0x100 + AT_ONCE // 2)
        yield from self.run(
            self.shuffled([add_ipv4(n) for n in ipv4] + [add_ipv6(n) for n in ipv6])
        )
        before, after = self.before, self.after
        if not before.aliases.items() <= after.aliases.items():
            yield f"an alias was lost: {before.aliases} became {after.aliases}"
        if not before.alias_files().items() <= after.alias_files().items():
            yield "the file of an older alias was changed"
        if set(after.aliases) != set(after.alias_files()):
            yield f"aliases {sorted(after.aliases)}, but files {sorted(after.alias_files())}"
        if not 1 <= len(after.aliases) - len(before.aliases) <= len(ipv4):
            yield f"{len(ipv4)} IPv4 adds made {before.aliases} into {after.aliases}"
        wanted = {f"2001:db8::{n:x}" for n in ipv6}
        if after.ipv6 != before.ipv6 | wanted:
            yield f"IPv6 runs {sorted(after.ipv6)}"
        if not before.listed < after.listed <= before.listed | wanted:
            yield f"listed are {sorted(after.listed)}"
        self.count(
            "IPv4 adds that shared a number", len(ipv4) - len(after.aliases) + len(before.aliases)
        )
        self.count("IPv6 adds lost from the file", len(before.listed | wanted) - len(after.listed))

    def deletes(self):
        start_over(aliases=6, ipv6=6)
        doomed = self.dice.sample(range(1, 7), AT_ONCE // 2)
        labels = {f"eth0:{n}" for n in doomed}
        ipv6 = {f"2001:db8::{n + 1:x}" for n in doomed}
        yield from self.run(
            self.shuffled(
                [("--del", f"192.0.2.{n + 1}") for n in doomed]
                + [("--del", address) for address in ipv6]
            )
        )
        before, after = self.before, self.after
        kept = {label: text for label, text in before.alias_files().items() if label not in labels}
        if after.alias_files() != kept:
            yield f"after deleting {labels} the files are {sorted(after.alias_files())}"
        for label, address in before.aliases.items():
            if label not in labels and after.aliases.get(label) != address:
                yield f"{label} was lost"
        if after.ipv6 != before.ipv6 - ipv6:
            yield f"IPv6 runs {sorted(after.ipv6)}"
        if not before.listed - ipv6 <= after.listed < before.listed:
            yield f"listed are {sorted(after.listed)}"
        self.count("deleted aliases brought back", len(labels & set(after.aliases)))
        self.count("IPv6 deletes lost from the file", len(ipv6 & after.listed))

    def mixed(self):
        start_over(aliases=4, ipv6=4)
        yield from self.run(
            self.shuffled(
                [
                    add_ipv4(200),
                    add_ipv4(201),
                    add_ipv6(0x200),
                    add_ipv6(0x201),
                    ("--del", "192.0.2.2"),
                    ("--del", "192.0.2.3"),
                    ("--del", "2001:db8::1"),
                    ("--del", "2001:db8::3"),
                ]
            )
        )
        if not {"2001:db8::2", "2001:db8::4", "2001:db8::5"} <= self.after.listed:
            yield f"an IPv6 address that nobody deleted is not listed: {sorted(self.after.listed)}"
        if not {"2001:db8::2", "2001:db8::4", "2001:db8::5"} <= self.after.ipv6:
            yield f"an IPv6 address that nobody deleted is gone: {sorted(self.after.ipv6)}"

    def shuffled(self, commands):
        self.dice.shuffle(commands)
        return commands


def try_rounds(rounds, seed):
    """Returns the number of failed rounds. Prints the figures of each kind."""
    failed = 0
    for kind in (Round.adds, Round.deletes, Round.mixed):
        played = Round(random.Random(seed))
        for number in range(rounds):
            faults = list(kind(played))
            failed += bool(faults)
            for fault in faults:
                print(f"FAILED {kind.__name__}, round {number + 1}: {fault}")
        figures = ", ".join(f"{number} {what}" for what, number in played.figures.items())
        print(f"{kind.__name__:8} {rounds:4} rounds: {figures}")
    return failed


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=200, help="of each kind")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    require_sandbox()

    start_over(aliases=0, ipv6=0)
    stop, results = multiprocessing.Event(), multiprocessing.Queue()
    readers = [
        multiprocessing.Process(target=read_until_told, args=(stop, results))
        for _ in range(READERS)
    ]
    for reader in readers:
        reader.start()
    failed = try_rounds(options.rounds, options.seed)
    stop.set()
    seen = [results.get(timeout=TIMEOUT_SECONDS) for _ in readers]
    for reader in readers:
        reader.join()

    looks = sum(count for count, _ in seen)
    torn = [fault for _, faults in seen for fault in faults]
    for fault in torn:
        print(f"FAILED {fault}")
    print(f"readers  {looks:6} whole files read meanwhile, {len(torn)} torn")
    print(f"{3 * options.rounds} rounds, {failed} failed")
    return 1 if failed or torn or looks == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
