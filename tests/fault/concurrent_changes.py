#!/usr/bin/python3
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

--rounds N plays N rounds of each kind.
"""

import collections
import multiprocessing
import random
import re
import subprocess
import sys

import machine
from machine import SCRIPTS, alias_text, failures, is_temporary, read_files

INTERFACE_FILE = "ifcfg-eth0"
READERS = 2
TIMEOUT_SECONDS = 30

# No edit may change these lines, which surround the edited ones. There are enough of them to make
# an edit need many reads and writes, so that other processes can interleave.
FIRST_LINES = "# first\nDEVICE=eth0\n"
LAST_LINES = "".join(f"# line {number}\n" for number in range(5000))
LAST_LINES += "IPV6INIT=yes\nGATEWAY='192.0.2.254'  # last\n"

ALIAS_FILE = re.compile(alias_text("(eth0:[0-9]+)", r"192\.0\.2\.[0-9]+", r"255\.255\.255\.0"))
IPV6_LINE = re.compile(r"^IPV6ADDR.*\n?", re.MULTILINE)
ENTRY = "2001:db8::[0-9a-f]+/[0-9]+"
IPV6_LINES = re.compile(rf'IPV6ADDR={ENTRY}\n(IPV6ADDR_SECONDARIES="{ENTRY}( {ENTRY})*"\n)?')


def is_whole(name, text):
    if name != INTERFACE_FILE:
        match = ALIAS_FILE.fullmatch(text)
        return match and name == f"ifcfg-{match[1]}"
    ours = "".join(IPV6_LINE.findall(text))
    return IPV6_LINE.sub("", text) == FIRST_LINES + LAST_LINES and IPV6_LINES.fullmatch(ours)


def read_until_told(stop, results):
    """Gives the number of files read, and what was wrong with them."""
    looks, torn = 0, []
    while not stop.is_set():
        for name, text in read_files().items():
            if is_temporary(name):
                continue  # still being written, which is what it is for
            looks += 1
            if not is_whole(name, text):
                torn.append(f"{name} torn: {text!r:.300}")
        if not (SCRIPTS / INTERFACE_FILE).exists():
            torn.append("no interface file")
    results.put((looks, torn[:10]))


class State:
    """The running system and the files."""

    def __init__(self):
        shown, self.files = machine.shown_addresses(), read_files()
        lasting = (name for name in self.files if not is_temporary(name))
        self.alias_files = {n.removeprefix("ifcfg-") for n in lasting if n != INTERFACE_FILE}
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


def commands_to_add(numbers, ipv6_numbers):
    yield from (("--add", "eth0", ipv4(number), "255.255.255.0") for number in numbers)
    yield from (("--add", "eth0", ipv6(number), "64") for number in ipv6_numbers)


def start_over(count):
    """Sets the main addresses and that many aliases and secondary IPv6 addresses, in the kernel and
    in the files."""
    aliases = {f"eth0:{number}": ipv4(number + 1) for number in range(1, count + 1)}
    listed = [ipv6(number) for number in range(2, count + 2)]
    ours = f"IPV6ADDR={ipv6(1)}/64\n{machine.list_line(listed)}"
    files = {f"ifcfg-{label}": alias_text(label, ip) for label, ip in aliases.items()}
    machine.write_files(files | {INTERFACE_FILE: FIRST_LINES + ours + LAST_LINES})
    addresses = [f"{ip}/24 label {label}" for label, ip in aliases.items()]
    addresses += [f"{ip}/64 nodad" for ip in [ipv6(1), *listed]]
    machine.set_addresses(["192.0.2.1/24", *addresses])


class Rounds:
    """The rounds of one kind, and their figures. A round returns the rules and whether they hold."""

    def __init__(self, play, seed):
        self.play, self.kind, self.number = play, play.__name__, 0
        self.dice = random.Random(seed)
        self.figures = collections.Counter()

    def require(self, holds, complaint):
        machine.require(holds, f"{self.kind}, round {self.number}: {complaint}")

    def run(self, rounds):
        """Returns the number of failed rounds."""
        failed = 0
        for self.number in range(1, rounds + 1):
            failed_before = len(failures)
            for rule, holds in self.play(self).items():
                self.require(holds, f"not so: {rule}: {self.before} became {self.after}")
            failed += len(failures) > failed_before
        figures = ", ".join(f"{number} {what}" for what, number in self.figures.items())
        print(f"{self.kind:8} {rounds:4} rounds: {figures}")
        return failed

    def run_at_once(self, *commands):
        """Starts all commands in random order, then waits for all. Returns the states before and
        after them."""
        self.before = State()
        streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True}
        commands = self.dice.sample(commands, len(commands))
        started = [subprocess.Popen(["addrtool", *command], **streams) for command in commands]
        for process in started:
            _, err = process.communicate(timeout=TIMEOUT_SECONDS)
            status, what = process.returncode, f"{process.args} ended with {process.returncode}"
            self.require(status in (0, 1), f"{what}: {err!r}")
            has_message = err.endswith("\n") and len(err) > 1
            self.require(status != 1 or has_message, f"{what} without a message")
            self.figures["processes"] += 1
            if status == 1:
                self.figures["refused with a message"] += 1
        self.after = State()
        for name, text in self.after.files.items():
            self.require(not is_temporary(name), f"left behind: {name}")
            self.require(is_temporary(name) or is_whole(name, text), f"{name} torn: {text!r:.300}")
        return self.before, self.after

    def adds(self):
        start_over(3)
        before, after = self.run_at_once(*commands_to_add(range(100, 104), range(0x100, 0x104)))
        wanted = before.ipv6 | {ipv6(number) for number in range(0x100, 0x104)}
        made = len(after.aliases) - len(before.aliases)
        self.figures["IPv4 adds that shared a number"] += 4 - made
        self.figures["IPv6 adds lost from the file"] += len(wanted - after.listed)
        kept_files = all(before.text_of(a) == after.text_of(a) for a in before.alias_files)
        return {
            "every old alias stays": before.aliases.items() <= after.aliases.items(),
            "the file of every old alias stays": kept_files,
            "the aliases have the files": after.aliases.keys() == after.alias_files,
            "there are 1 to 4 new aliases": 1 <= made <= 4,
            "all IPv6 addresses run": after.ipv6 == wanted,
            "at least one is listed, and no other": before.listed < after.listed <= wanted,
        }

    def deletes(self):
        start_over(6)
        doomed = self.dice.sample(range(1, 7), 4)
        labels = {f"eth0:{number}" for number in doomed}
        gone = {ipv6(number + 1) for number in doomed}
        addresses = [ipv4(number + 1) for number in doomed] + sorted(gone)
        before, after = self.run_at_once(*(("--del", address) for address in addresses))
        self.figures["deleted aliases brought back"] += len(labels & after.aliases.keys())
        self.figures["IPv6 deletes lost from the file"] += len(gone & after.listed)
        kept = before.alias_files - labels
        kept_files = all(before.text_of(label) == after.text_of(label) for label in kept)
        return {
            "the other aliases stay": all(before.aliases[a] == after.aliases.get(a) for a in kept),
            "the files of the others are left": after.alias_files == kept and kept_files,
            "the other IPv6 addresses run": after.ipv6 == before.ipv6 - gone,
            "the others are listed": before.listed - gone <= after.listed < before.listed,
        }

    def mixed(self):
        start_over(4)
        addresses = [ipv4(2), ipv4(3), ipv6(1), ipv6(3)]
        deletes = (("--del", address) for address in addresses)
        _, after = self.run_at_once(*commands_to_add((200, 201), (0x200, 0x201)), *deletes)
        kept = {ipv6(2), ipv6(4), ipv6(5)}
        return {
            "the IPv6 addresses that nobody deletes are listed": kept <= after.listed,
            "the IPv6 addresses that nobody deletes run": kept <= after.ipv6,
        }


def main():
    options = machine.parse_options(__doc__, rounds=200, seed=1)
    start_over(0)
    stop, results = multiprocessing.Event(), multiprocessing.Queue()
    job = {"target": read_until_told, "args": (stop, results)}
    readers = [multiprocessing.Process(**job) for _ in range(READERS)]
    for reader in readers:
        reader.start()
    kinds = (Rounds.adds, Rounds.deletes, Rounds.mixed)
    failed = sum(Rounds(kind, options.seed).run(options.rounds) for kind in kinds)
    stop.set()
    seen = [results.get(timeout=TIMEOUT_SECONDS) for _ in readers]
    for reader in readers:
        reader.join()
    looks = sum(count for count, _ in seen)
    torn = [fault for _, faults in seen for fault in faults]
    for fault in torn:
        machine.require(False, f"a reader saw {fault}")
    print(f"readers  {looks:6} whole files read meanwhile, {len(torn)} torn")
    print(f"{3 * options.rounds} rounds, {failed} failed")
    return 1 if failures or looks == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
