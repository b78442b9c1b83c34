#!/usr/bin/python3
"""Runs several adds and deletes at the same time, as a panel may, and looks for torn files.

Runs inside scripts/sandbox. There is no lock, so changes do get lost. What must hold nevertheless
stands at the end of each kind of round. After each round, and for the readers that look at the
files meanwhile, every alias file is a whole one, and the interface file holds its other lines and
well-formed lists. No temporary file outlives the round.

--rounds N plays N rounds of each kind.
"""

import collections
import multiprocessing
import random
import re
import subprocess
import sys

import machine
from machine import alias_text, is_temporary, read_files, require

INTERFACE_FILE = "ifcfg-eth0"
TIMEOUT_SECONDS = 30

# No edit may change these lines, which surround the edited ones. There are enough of them to make
# an edit need many reads and writes, so that other processes can interleave.
FIRST_LINES = "# first\nDEVICE=eth0\n"
LAST_LINES = "".join(f"# line {number}\n" for number in range(5000)) + "IPV6INIT=yes\n"

ALIAS_FILE = re.compile(alias_text("(eth0:[0-9]+)", r"192\.0\.2\.[0-9]+", r"255\.255\.255\.0"))
IPV6_LINE = re.compile(r"^IPV6ADDR.*\n?", re.MULTILINE)
ENTRY = "2001:db8::[0-9a-f]+/[0-9]+"
IPV6_LINES = re.compile(rf'IPV6ADDR={ENTRY}\n(IPV6ADDR_SECONDARIES="{ENTRY}( {ENTRY})*"\n)?')

figures = collections.Counter()


def is_whole(name, text):
    if name != INTERFACE_FILE:
        match = ALIAS_FILE.fullmatch(text)
        return match is not None and name == f"ifcfg-{match.group(1)}"
    ours = "".join(IPV6_LINE.findall(text))
    return IPV6_LINE.sub("", text) == FIRST_LINES + LAST_LINES and IPV6_LINES.fullmatch(ours)


def read_until_told(stop, results):
    """Gives the number of files read, and those that were not whole."""
    looks, torn = 0, []
    while not stop.is_set():
        files = {name: text for name, text in read_files().items() if not is_temporary(name)}
        looks += len(files)
        torn += [
            name for name in {INTERFACE_FILE, *files} if not is_whole(name, files.get(name, ""))
        ]
    results.put((looks, torn[:10]))


class State:
    """The running system and the files."""

    def __init__(self):
        shown, self.files = machine.shown_addresses(), read_files()
        self.alias_files = {name[6:] for name in self.files.keys() - {INTERFACE_FILE}}
        aliases = re.findall(r"inet ([0-9.]+)/24 .*?(eth0:[0-9]+)\\", shown)
        self.aliases = {label: address for address, label in aliases}
        self.ipv6 = set(re.findall(r"inet6 (\S+)/64", shown))
        self.listed = set(re.findall(r"[\" =](2001:db8::[0-9a-f]+)/", self.files[INTERFACE_FILE]))

    def __str__(self):
        files, ipv6, listed = map(sorted, (self.alias_files, self.ipv6, self.listed))
        return f"aliases {self.aliases}, their files {files}, IPv6 {ipv6}, listed {listed}"

    def text_of(self, label):
        return self.files.get(f"ifcfg-{label}")


def ipv4(number):
    return f"192.0.2.{number}"


def ipv6(number):
    return f"2001:db8::{number:x}"


def adds_of(numbers, ipv6_numbers):
    yield from (["--add", "eth0", ipv4(number), "255.255.255.0"] for number in numbers)
    yield from (["--add", "eth0", ipv6(number), "64"] for number in ipv6_numbers)


def start_over(count):
    """Sets the main addresses and that many aliases and secondary IPv6 addresses, in the kernel and
    in the files."""
    aliases = {f"eth0:{number}": ipv4(number + 1) for number in range(1, count + 1)}
    secondaries = [ipv6(number) for number in range(2, count + 2)]
    lists = f"IPV6ADDR={ipv6(1)}/64\n"
    if secondaries:
        lists += 'IPV6ADDR_SECONDARIES="' + " ".join(f"{a}/64" for a in secondaries) + '"\n'
    files = {f"ifcfg-{label}": alias_text(label, ip) for label, ip in aliases.items()}
    files[INTERFACE_FILE] = FIRST_LINES + lists + LAST_LINES
    machine.write_files(files)
    addresses = [f"{ip}/24 label {label}" for label, ip in aliases.items()]
    addresses += [f"{ip}/64 nodad" for ip in [ipv6(1), *secondaries]]
    machine.set_addresses(["192.0.2.1/24", *addresses])


def run_at_once(commands):
    """Starts all commands in random order, then waits for all. Returns the states before and
    after them."""
    before = State()
    pipes = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "universal_newlines": True}
    commands = random.sample(commands, len(commands))
    for process in [subprocess.Popen(["addrtool", *command], **pipes) for command in commands]:
        _, err = process.communicate(timeout=TIMEOUT_SECONDS)
        status = process.returncode
        is_good = status == 0 or (status == 1 and re.fullmatch(r"(?s).+\n", err))
        require(is_good, f"{process.args} ended with {status} and {err!r}")
    after = State()
    for name, text in after.files.items():
        require(is_whole(name, text), f"{name} is torn: {text!r:.300}")
    return before, after


def check(before, after, rules):
    for rule, holds in rules.items():
        require(holds, f"not so: {rule}: {before} became {after}")


def play_adds():
    start_over(3)
    before, after = run_at_once([*adds_of(range(100, 104), range(0x100, 0x104))])
    wanted = before.ipv6 | {ipv6(number) for number in range(0x100, 0x104)}
    made = len(after.aliases) - len(before.aliases)
    figures["IPv4 adds that shared a number"] += 4 - made
    figures["IPv6 adds lost from the file"] += len(wanted - after.listed)
    rules = {
        "every old alias stays": before.aliases.items() <= after.aliases.items(),
        "its file stays": all(after.text_of(a) == before.text_of(a) for a in before.alias_files),
        "the aliases have files": after.aliases.keys() == after.alias_files,
        "there are 1 to 4 new aliases": 1 <= made <= 4,
        "all IPv6 addresses run": after.ipv6 == wanted,
        "at least one is listed, and no other": before.listed < after.listed <= wanted,
    }
    check(before, after, rules)


def play_deletes():
    start_over(6)
    doomed = random.sample(range(1, 7), 4)
    labels = {f"eth0:{number}" for number in doomed}
    gone = {ipv6(number + 1) for number in doomed}
    addresses = [ipv4(number + 1) for number in doomed] + sorted(gone)
    before, after = run_at_once([["--del", address] for address in addresses])
    figures["deleted aliases brought back"] += len(labels & after.aliases.keys())
    figures["IPv6 deletes lost from the file"] += len(gone & after.listed)
    kept = before.alias_files - labels
    rules = {
        "the other aliases stay": all(before.aliases[a] == after.aliases.get(a) for a in kept),
        "their files stay": all(after.text_of(a) == before.text_of(a) for a in kept),
        "no other file is left": after.alias_files == kept,
        "the other IPv6 addresses run": after.ipv6 == before.ipv6 - gone,
        "the others are listed": before.listed - gone <= after.listed < before.listed,
    }
    check(before, after, rules)


def play_both():
    start_over(4)
    deletes = [["--del", address] for address in (ipv4(2), ipv4(3), ipv6(1), ipv6(3))]
    before, after = run_at_once([*adds_of((200, 201), (0x200, 0x201)), *deletes])
    kept = {ipv6(2), ipv6(4), ipv6(5)}  # those that nobody deletes
    rules = {
        "other IPv6 addresses are listed": kept <= after.listed,
        "other IPv6 addresses run": kept <= after.ipv6,
    }
    check(before, after, rules)


def main():
    options = machine.parse_options(__doc__, rounds=(200, 15), seed=(1, 1))
    random.seed(options.seed)
    start_over(0)
    stop, results = multiprocessing.Event(), multiprocessing.Queue()
    job = {"target": read_until_told, "args": (stop, results)}
    readers = [multiprocessing.Process(**job) for _ in range(2)]
    for reader in readers:
        reader.start()
    for play in (play_adds, play_deletes, play_both):
        for _ in range(options.rounds):
            play()
    stop.set()
    looks, torn = zip(*(results.get(timeout=TIMEOUT_SECONDS) for _ in readers))
    require(min(looks) > 0 and not any(torn), f"readers read {looks} files, torn were {torn}")
    print(f"{3 * options.rounds} rounds of 8 processes: {dict(figures)}")
    print(f"{sum(looks)} files read meanwhile; {len(machine.failures)} failures")
    return 1 if machine.failures else 0


if __name__ == "__main__":
    sys.exit(main())
