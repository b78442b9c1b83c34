#!/usr/bin/env python3
"""Adds, lists and deletes thousands of addresses, and watches memory and descriptors.

Runs inside scripts/sandbox, on one interface and then on many. Most addresses are
put there by ip(8), with the files that belong to them; addrtool adds the rest, and
deletes those again. It holds that

  - --list prints exactly the addresses that are there;
  - after each step the files are those of the addresses, and the foreign lines of
    the interfaces' files are intact;
  - no run needs more than a few descriptors, however many addresses there are: none
    may open one beyond a limit;
  - the memory of a run grows by no more than a bound for each address, and not at
    all when the listing is repeated in one process.

With --valgrind PROGRAM, that build of addrtool also lists, adds, deletes and fails
under valgrind: no error, no leak, no descriptor left open.
"""

import argparse
import itertools
import re
import subprocess
import sys
import time

from machine import SCRIPTS, alias_text, ip, list_line, path_of, remove_files, require_sandbox

DESCRIPTOR_LIMIT = 8  # three streams, and what an edit of a file has open at once
BYTES_PER_ADDRESS = 512
REPEATED_LISTINGS = 20
LONGEST_LINE = 8095  # of an interface file; a longer one is edited as several, and not judged here
CUT_ENTRY = r"\S+: cannot parse IPv6 address(\nSystem error .*)?"
FOREIGN_LINES = ["# first\n", "IPV6INIT=yes\n", "# last\n"]

failures = []
peak_kilobytes = 0


def require(holds, complaint):
    if not holds:
        failures.append(complaint)
        print(f"FAILED {complaint}")


def addrtool(*arguments, may_say=""):
    """Runs addrtool, which must succeed. Returns its output and its peak memory in kilobytes."""
    global peak_kilobytes
    # A forked process starts with the peak memory of its parent, so time(1) must be the parent.
    done = subprocess.run(
        [
            "prlimit",
            f"--nofile={DESCRIPTOR_LIMIT}",
            "/usr/bin/time",
            "--format=%M",
            "addrtool",
            *arguments,
        ],
        capture_output=True,
        text=True,
    )
    complaint, _, kilobytes = done.stderr.rstrip().rpartition("\n")
    require(
        done.returncode == 0 and (not complaint or re.fullmatch(may_say, complaint)),
        f"addrtool {arguments} ended with {done.returncode}: {complaint}",
    )
    peak_kilobytes = max(peak_kilobytes, int(kilobytes))
    return done.stdout, int(kilobytes)


class Interface:
    """What an interface should carry: numbers of aliases, and IPv6 addresses as the file lists them."""

    def __init__(self, name, network):
        self.name, self.network = name, network
        self.aliases, self.secondaries = [], []
        self.is_list_judged = True

    def ipv4(self, number):
        return f"172.{16 + self.network // 4}.{self.network % 4 * 64 + number // 250}.{number % 250 + 2}"

    def ipv6(self, number):
        return f"2001:db8:{self.network + 1:x}::{number:x}"

    def main_ipv4(self):
        return f"172.{16 + self.network // 4}.{self.network % 4 * 64}.1"

    def path(self, number=None):
        return path_of(self.name if number is None else f"{self.name}:{number}")

    def alias_text(self, number):
        return alias_text(f"{self.name}:{number}", self.ipv4(number), "255.255.192.0")

    def populate(self, ipv4, ipv6):
        """The commands for ip(8). All addresses of an interface are in one subnet with the main
        address, so a delete drops no other alias."""
        self.aliases = list(range(1, ipv4 + 1))
        self.secondaries = [self.ipv6(number) for number in range(2, ipv6 + 2)]
        for number in self.aliases:
            self.path(number).write_text(self.alias_text(number))
            yield (
                f"address add {self.ipv4(number)}/18 dev {self.name} " f"label {self.name}:{number}"
            )
        primary = f"IPV6ADDR={self.ipv6(1)}/64\n"
        listed = list_line(self.secondaries)
        self.is_list_judged = len(listed) <= LONGEST_LINE
        self.path().write_text("".join([FOREIGN_LINES[0], primary, listed, *FOREIGN_LINES[1:]]))
        yield from (
            f"address add {address}/64 dev {self.name} nodad" for address in self.secondaries
        )

    def add_ipv4(self):
        number = len(self.aliases) + 1
        self.aliases.append(number)
        addrtool("--add", self.name, self.ipv4(number), "255.255.192.0")

    def add_ipv6(self):
        address = self.ipv6(len(self.secondaries) + 2)
        self.secondaries.insert(0, address)
        addrtool("--add", self.name, address, "64", may_say=self.complaint())
        self.note_line_length()

    def delete_ipv4(self):
        addrtool("--del", self.ipv4(self.aliases.pop()))

    def delete_ipv6(self):
        addrtool("--del", self.secondaries.pop(0), may_say=self.complaint())

    def complaint(self):
        return "" if self.is_list_judged else CUT_ENTRY

    def note_line_length(self):
        longest = max(map(len, self.path().read_text().splitlines()))
        self.is_list_judged = self.is_list_judged and longest < LONGEST_LINE

    def listing(self):
        yield f"{self.main_ipv4()} 255.255.192.0 {self.name} 1"
        yield from (f"{self.ipv4(number)} 255.255.192.0 {self.name} 0" for number in self.aliases)
        yield from (f"{address} 64 {self.name} 0" for address in [self.ipv6(1), *self.secondaries])

    def check_files(self):
        for number in self.aliases:
            require(
                self.path(number).read_text() == self.alias_text(number),
                f"{self.path(number)} is not the alias's",
            )
        lines = self.path().read_text().splitlines(keepends=True)
        if self.is_list_judged:
            # The last entry of a quoted list loses its prefix length, so lengths are not compared.
            listed = re.findall(
                r"([0-9a-f:]+)/[0-9]+",
                "".join(line for line in lines if line.startswith("IPV6ADDR_SECONDARIES=")),
            )
            require(listed == self.secondaries, f"{self.path()} lists {listed[:5]} ...")
            require(
                [line for line in lines if not line.startswith("IPV6ADDR")] == FOREIGN_LINES,
                f"{self.path()} has other foreign lines",
            )


def check(interfaces, when):
    printed, memory = addrtool("--list")
    expected = sorted(itertools.chain(*(interface.listing() for interface in interfaces)))
    require(
        sorted(printed.splitlines()) == expected,
        f"{when}: {len(printed.splitlines())} addresses listed, {len(expected)} expected",
    )
    for interface in interfaces:
        interface.check_files()
    files = {path.name for path in SCRIPTS.iterdir()}
    wanted = {
        interface.path(number).name
        for interface in interfaces
        for number in [None, *interface.aliases]
    }
    require(files == wanted, f"{when}: files too many or too few: {list(files ^ wanted)[:5]}")
    return len(expected), memory


def start_over(names):
    """Fresh interfaces with their main addresses alone."""
    remove_files()
    batch = ["address flush dev eth0"]
    interfaces = [Interface(name, network) for network, name in enumerate(names)]
    for interface in interfaces:
        if interface.name != "eth0":
            batch += [
                f"link add {interface.name} type veth peer name {interface.name}p",
                f"link set {interface.name} up",
            ]
        batch += [
            f"address add {interface.main_ipv4()}/18 dev {interface.name}",
            f"address add {interface.ipv6(1)}/64 dev {interface.name} nodad",
        ]
    ip(batch)
    for interface in interfaces:
        list(interface.populate(0, 0))
    return interfaces


def timed(steps, interfaces, count):
    """Runs a step that many times, in turn on each interface. Returns the milliseconds per step."""
    start = time.monotonic()
    for interface, _ in zip(itertools.cycle(interfaces), range(count)):
        steps(interface)
    return (time.monotonic() - start) * 1000 / max(count, 1)


def try_layout(names, options):
    interfaces = start_over(names)
    few, memory_of_few = check(interfaces, "at the start")

    # Each interface gets the same share.
    share4, rest4 = divmod(options.ipv4 - options.by_addrtool, len(names))
    share6, rest6 = divmod(options.ipv6 - options.by_addrtool_ipv6, len(names))
    ip(
        [
            line
            for number, interface in enumerate(interfaces)
            for line in interface.populate(share4 + (number < rest4), share6 + (number < rest6))
        ]
    )
    check(interfaces, "populated")

    ms = {
        "IPv4 add": timed(Interface.add_ipv4, interfaces, options.by_addrtool),
        "IPv6 add": timed(Interface.add_ipv6, interfaces, options.by_addrtool_ipv6),
    }
    many, memory_of_many = check(interfaces, "added")
    _, memory_repeated = addrtool(*["--list"] * REPEATED_LISTINGS)
    if options.valgrind and len(names) == 1:
        try_under_valgrind(options.valgrind, interfaces[0])
        check(interfaces, "run under valgrind")
    ms["IPv4 delete"] = timed(Interface.delete_ipv4, interfaces, options.by_addrtool)
    ms["IPv6 delete"] = timed(Interface.delete_ipv6, interfaces, options.by_addrtool_ipv6)
    left, memory_after = check(interfaces, "deleted")

    growth = (memory_of_many - memory_of_few) * 1024 / (many - few)
    require(growth <= BYTES_PER_ADDRESS, f"{growth:.0f} bytes for each address")
    require(
        memory_repeated <= memory_of_many + 256,
        f"{REPEATED_LISTINGS} listings need " f"{memory_repeated} kB, one {memory_of_many} kB",
    )
    print(
        f"{len(names)} interface{'s' * (len(names) > 1)}: {many} addresses, of which addrtool added"
        f" {options.by_addrtool} IPv4 and {options.by_addrtool_ipv6} IPv6; {left} after its deletes"
    )
    print("    ms each: " + ", ".join(f"{what} {value:.1f}" for what, value in ms.items()))
    print(
        f"    listing {few} addresses takes {memory_of_few} kB, {many} take {memory_of_many} kB"
        f" ({growth:.0f} bytes each), {REPEATED_LISTINGS} listings at once {memory_repeated} kB,"
        f" {left} afterwards {memory_after} kB"
    )
    if not all(interface.is_list_judged for interface in interfaces):
        print(f"    an IPv6 list outgrew a line of {LONGEST_LINE} bytes and was not looked at")


def try_under_valgrind(program, interface):
    """Runs each action and each failure once. The addresses are the same at the end."""
    ipv4, ipv6 = interface.ipv4(15000), interface.ipv6(0xF000)
    for status, *arguments in [
        (0, "--list"),
        (0, "--add", interface.name, ipv4, "255.255.192.0"),
        (0, "--del", ipv4),
        (0, "--add", interface.name, ipv6, "64"),
        (0, "--del", ipv6),
        (0, "--qv-assigned-ip", ipv4),
        (1, "--del", interface.main_ipv4()),
        (1, "--add", "nowhere", ipv4, "255.255.192.0"),
        (1, "--add", interface.name, ipv6, "no number"),
        (2, "--help"),
    ]:
        command = [
            "valgrind",
            "--quiet",
            "--leak-check=full",
            "--track-fds=yes",
            "--error-exitcode=9",
            "--errors-for-leak-kinds=definite,indirect,possible",
            program,
            *arguments,
        ]
        done = subprocess.run(command, capture_output=True, text=True)
        require(
            done.returncode == status and "Open file descriptor" not in done.stderr,
            f"valgrind addrtool {arguments}: status {done.returncode}: {done.stderr}",
        )
    print("    under valgrind: no error, no leak, no descriptor left")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--ipv4", type=int, default=10000)
    parser.add_argument("--ipv6", type=int, default=1000)
    parser.add_argument("--interfaces", type=int, default=50, help="of the second layout")
    parser.add_argument("--by-addrtool", type=int, default=500, metavar="N", help="of the IPv4")
    parser.add_argument(
        "--by-addrtool-ipv6", type=int, default=200, metavar="N", help="of the IPv6"
    )
    parser.add_argument("--valgrind", metavar="PROGRAM", help="a dynamically linked addrtool")
    options = parser.parse_args()
    require_sandbox()
    try_layout(["eth0"], options)
    try_layout([f"load{number}" for number in range(options.interfaces)], options)
    print(f"largest memory of a run {peak_kilobytes} kB, descriptors below {DESCRIPTOR_LIMIT}")
    print(f"{len(failures)} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
