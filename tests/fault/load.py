#!/usr/bin/python3
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

--interfaces N says how many the second layout has, and --by-addrtool N and
--by-addrtool-ipv6 N how many of the --ipv4 N and --ipv6 N addresses addrtool adds.
"""

import ipaddress
import itertools
import re
import subprocess
import sys
import time

import machine
from machine import SCRIPTS, alias_text, failures, ip, list_line, read_files, require

DESCRIPTOR_LIMIT = 8  # three streams, and what an edit of a file has open at once
BYTES_PER_ADDRESS = 512
REPEATED_LISTINGS = 20
LONGEST_LINE = 8095  # of an interface file; a longer one is edited as several, and not judged here
CUT_ENTRY = r"\S+: cannot parse IPv6 address(\nSystem error .*)?"
NETMASK = "255.255.192.0"
VALGRIND = """valgrind --quiet --leak-check=full --track-fds=yes --error-exitcode=9
    --errors-for-leak-kinds=definite,indirect,possible""".split()

peak_kilobytes = 0


def addrtool(*arguments, may_say=""):
    """Runs addrtool, which must succeed. Returns its output and its peak memory in kilobytes."""
    global peak_kilobytes
    # A forked process starts with the peak memory of its parent, so time(1) must be the parent.
    command = f"prlimit --nofile={DESCRIPTOR_LIMIT} /usr/bin/time --format=%M addrtool".split()
    done = subprocess.run([*command, *arguments], capture_output=True, text=True)
    complaint, _, kilobytes = done.stderr.rstrip().rpartition("\n")
    is_good = done.returncode == 0 and (not complaint or re.fullmatch(may_say, complaint))
    require(is_good, f"addrtool {arguments} ended with {done.returncode}: {complaint}")
    peak_kilobytes = max(peak_kilobytes, int(kilobytes))
    return done.stdout, int(kilobytes)


class Interface:
    """What an interface should carry: numbers of aliases, and IPv6 addresses as the file lists them.

    All IPv4 addresses are in one subnet with the main address, so a delete drops no other alias.
    """

    def __init__(self, number, name):
        self.number, self.name = number, name
        self.aliases, self.secondaries = [], []
        self.is_list_judged = True

    def ipv4(self, number):
        return str(ipaddress.IPv4Address("172.16.0.1") + self.number * 2**14 + number)

    def ipv6(self, number):
        return f"2001:db8:{self.number + 1:x}::{number:x}"

    def populate(self, ipv4, ipv6):
        """Returns the files, and the commands for ip(8)."""
        self.aliases = list(range(1, ipv4 + 1))
        self.secondaries = [self.ipv6(number) for number in range(2, ipv6 + 2)]
        labels = {number: f"label {self.name}:{number}" for number in self.aliases}
        addresses = [f"{self.ipv4(number)}/18 {label}" for number, label in labels.items()]
        addresses += [f"{address}/64 nodad" for address in self.secondaries]
        list_text = list_line(self.secondaries)
        self.is_list_judged = len(list_text) <= LONGEST_LINE
        text = "".join([*self.other_lines()[:2], list_text, *self.other_lines()[2:]])
        files = self.alias_files() | {f"ifcfg-{self.name}": text}
        return files, [f"address add {address} dev {self.name}" for address in addresses]

    def other_lines(self):
        """The lines of the interface's file that are not the list."""
        return ["# first\n", f"IPV6ADDR={self.ipv6(1)}/64\n", "IPV6INIT=yes\n", "# last\n"]

    def alias_files(self):
        labels = {number: f"{self.name}:{number}" for number in self.aliases}
        return {f"ifcfg-{l}": alias_text(l, self.ipv4(n), NETMASK) for n, l in labels.items()}

    def add_ipv4(self):
        self.aliases.append(len(self.aliases) + 1)
        addrtool("--add", self.name, self.ipv4(len(self.aliases)), NETMASK)

    def add_ipv6(self):
        self.secondaries.insert(0, self.ipv6(len(self.secondaries) + 2))
        addrtool("--add", self.name, self.secondaries[0], "64", may_say=self.complaint())
        longest = max(map(len, (SCRIPTS / f"ifcfg-{self.name}").read_text().splitlines()))
        self.is_list_judged = self.is_list_judged and longest < LONGEST_LINE

    def delete_ipv4(self):
        addrtool("--del", self.ipv4(self.aliases.pop()))

    def delete_ipv6(self):
        addrtool("--del", self.secondaries.pop(0), may_say=self.complaint())

    def complaint(self):
        return "" if self.is_list_judged else CUT_ENTRY

    def listing(self):
        yield f"{self.ipv4(0)} {NETMASK} {self.name} 1"
        yield from (f"{self.ipv4(number)} {NETMASK} {self.name} 0" for number in self.aliases)
        yield from (f"{address} 64 {self.name} 0" for address in [self.ipv6(1), *self.secondaries])

    def check_own_file(self, text):
        lines = text.splitlines(keepends=True)
        lists = [line for line in lines if line.startswith("IPV6ADDR_SECONDARIES=")]
        others = [line for line in lines if line not in lists]
        # The last entry of a quoted list loses its prefix length, so lengths are not compared.
        listed = re.findall(r"([0-9a-f:]+)/[0-9]+", "".join(lists))
        require(listed == self.secondaries, f"the file of {self.name} lists {listed[:5]} ...")
        require(others == self.other_lines(), f"the file of {self.name} has other foreign lines")


def check(interfaces, when):
    """Returns the number of addresses and the memory of their listing."""
    printed, memory = addrtool("--list")
    expected = sorted(itertools.chain(*(interface.listing() for interface in interfaces)))
    complaint = f"{len(printed.splitlines())} addresses listed, {len(expected)} expected"
    require(sorted(printed.splitlines()) == expected, f"{when}: {complaint}")
    files = read_files()
    for interface in interfaces:
        text = files.pop(f"ifcfg-{interface.name}")
        if interface.is_list_judged:
            interface.check_own_file(text)
    wanted = dict(itertools.chain(*(interface.alias_files().items() for interface in interfaces)))
    wrong = [name for name in files.keys() | wanted if files.get(name) != wanted.get(name)]
    require(not wrong, f"{when}: alias files missing, too many or wrong: {wrong[:5]}")
    return len(expected), memory


def populate(interfaces, ipv4, ipv6):
    """Gives each interface the same share of the addresses, in the kernel and in the files."""
    files, commands = {}, []
    (share4, rest4), (share6, rest6) = (divmod(count, len(interfaces)) for count in (ipv4, ipv6))
    for interface in interfaces:
        n = interface.number
        more_files, more = interface.populate(share4 + (n < rest4), share6 + (n < rest6))
        files |= more_files
        commands += more
    machine.write_files(files)
    ip(commands)


def start_over(names):
    """Fresh interfaces with their main addresses alone."""
    batch = ["address flush dev eth0"]
    interfaces = [Interface(number, name) for number, name in enumerate(names)]
    for interface in interfaces:
        name = interface.name
        if name != "eth0":
            batch += [f"link add {name} type veth peer name {name}p", f"link set {name} up"]
        batch.append(f"address add {interface.ipv4(0)}/18 dev {name}")
        batch.append(f"address add {interface.ipv6(1)}/64 dev {name} nodad")
    ip(batch)
    populate(interfaces, 0, 0)
    return interfaces


def timed(step, interfaces, count):
    """Runs a step that many times, in turn on each interface. Returns the milliseconds per step."""
    start = time.monotonic()
    for interface, _ in zip(itertools.cycle(interfaces), range(count)):
        step(interface)
    return (time.monotonic() - start) * 1000 / max(count, 1)


def try_layout(names, options):
    by_addrtool, by_addrtool_ipv6 = options.by_addrtool, options.by_addrtool_ipv6
    interfaces = start_over(names)
    few, memory_of_few = check(interfaces, "at the start")
    populate(interfaces, options.ipv4 - by_addrtool, options.ipv6 - by_addrtool_ipv6)
    check(interfaces, "populated")

    ms = {
        "IPv4 add": timed(Interface.add_ipv4, interfaces, by_addrtool),
        "IPv6 add": timed(Interface.add_ipv6, interfaces, by_addrtool_ipv6),
    }
    many, memory_of_many = check(interfaces, "added")
    _, memory_repeated = addrtool(*["--list"] * REPEATED_LISTINGS)
    if options.valgrind and len(names) == 1:
        try_under_valgrind(options.valgrind, interfaces[0])
        check(interfaces, "run under valgrind")
    ms["IPv4 delete"] = timed(Interface.delete_ipv4, interfaces, by_addrtool)
    ms["IPv6 delete"] = timed(Interface.delete_ipv6, interfaces, by_addrtool_ipv6)
    left, memory_after = check(interfaces, "deleted")

    growth = (memory_of_many - memory_of_few) * 1024 / (many - few)
    require(growth <= BYTES_PER_ADDRESS, f"{growth:.0f} bytes for each address")
    repeated = f"{REPEATED_LISTINGS} listings at once {memory_repeated} kB"
    require(memory_repeated <= memory_of_many + 256, f"{repeated}, one {memory_of_many} kB")
    print(
        f"{len(names)} interface{'s' * (len(names) > 1)}: {many} addresses, of which addrtool added"
        f" {by_addrtool} IPv4 and {by_addrtool_ipv6} IPv6; {left} after its deletes"
    )
    print("    ms each: " + ", ".join(f"{what} {value:.1f}" for what, value in ms.items()))
    print(
        f"    listing {few} addresses takes {memory_of_few} kB, {many} take {memory_of_many} kB"
        f" ({growth:.0f} bytes each), {repeated}, {left} afterwards {memory_after} kB"
    )
    if not all(interface.is_list_judged for interface in interfaces):
        print(f"    an IPv6 list outgrew a line of {LONGEST_LINE} bytes and was not looked at")


def try_under_valgrind(program, interface):
    """Runs each action and each failure once. The addresses are the same at the end."""
    name, ipv4, ipv6 = interface.name, interface.ipv4(15000), interface.ipv6(0xF000)
    for status, *arguments in [
        (0, "--list", "--qv-assigned-ip", ipv4, "--add", name, ipv4, NETMASK),
        (0, "--del", ipv4, "--add", name, ipv6, "64"),
        (1, "--del", ipv6, "--add", "nowhere", ipv4, NETMASK),
        (1, "--del", interface.ipv4(0)),
        (1, "--add", name, ipv6, "no number"),
        (2, "--help"),
    ]:
        done = subprocess.run([*VALGRIND, program, *arguments], capture_output=True, text=True)
        is_good = done.returncode == status and "== Open " not in done.stderr
        what = f"valgrind addrtool {arguments}: status {done.returncode}"
        require(is_good, f"{what}: {done.stderr}")
    print("    under valgrind: no error, no leak, no descriptor left")


def main():
    sizes = {"ipv4": 10000, "ipv6": 1000, "interfaces": 50}
    by_addrtool = {"by_addrtool": 500, "by_addrtool_ipv6": 200}
    options = machine.parse_options(__doc__, **sizes, **by_addrtool, valgrind="")
    try_layout(["eth0"], options)
    try_layout([f"load{number}" for number in range(options.interfaces)], options)
    print(f"largest memory of a run {peak_kilobytes} kB, descriptors below {DESCRIPTOR_LIMIT}")
    print(f"{len(failures)} failed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
