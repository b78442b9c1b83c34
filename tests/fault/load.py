#!/usr/bin/python3
"""Adds, lists and deletes thousands of addresses, and watches memory and descriptors.

Runs inside scripts/sandbox, on one interface and then on many. ip(8) adds --addresses N aliases and
a tenth as many IPv6 addresses. addrtool adds a fiftieth as many of both, and deletes them again.

  - --list prints exactly the addresses that are there;
  - after each step the files are those of the addresses, and other lines are intact;
  - no run opens more than a few descriptors, however many addresses there are;
  - an address takes little memory, and a second listing in one process takes none.

The dev build also lists, adds, deletes and fails under valgrind: no error, no leak, no descriptor
left open. valgrind follows malloc only in a dynamically linked C library.
"""

import ipaddress
import re
import sys

import machine
from machine import alias_text, require

DESCRIPTOR_LIMIT = 8  # three streams, and what an edit of a file has open at once
BYTES_PER_ADDRESS = 512
REPEATED_LISTINGS = 20
NETMASK = "255.255.192.0"
VALGRIND = "valgrind --quiet --leak-check=full --track-fds=yes --error-exitcode=9".split()
VALGRIND += ["--errors-for-leak-kinds=definite,indirect,possible", "build/dev/addrtool"]
LIMITED = f"prlimit --nofile={DESCRIPTOR_LIMIT} /usr/bin/time --format=%M addrtool".split()


def addrtool(*arguments):
    """Runs addrtool, which must succeed without a message. Returns its output, and its peak memory
    in kilobytes. A forked process starts with the peak of its parent, so time(1) is the parent."""
    done = machine.run([*LIMITED, *arguments])
    is_good = done.returncode == 0 and re.fullmatch(r"\d+\n", done.stderr)
    require(is_good, f"addrtool {arguments}: status {done.returncode}, {done.stderr}")
    return done.stdout, int(done.stderr.split()[-1])


class Interface:
    """What an interface should have. All its IPv4 addresses are in one subnet with the main address,
    so a delete drops no other alias. The file lists the IPv6 addresses that addrtool adds."""

    def __init__(self, number, name):
        self.number, self.name = number, name
        self.aliases, self.secondaries, self.listed = 0, [], []

    def ipv4(self, number):
        return str(ipaddress.IPv4Address("172.16.0.1") + self.number * 2**14 + number)

    def ipv6(self, number):
        return f"2001:db8:{self.number + 1:x}::{number:x}"

    def populate(self, ipv4, ipv6):
        """Yields the commands of ip(8) that add the main addresses and that many others."""
        yield f"address add {self.ipv4(0)}/18 dev {self.name}"
        yield f"address add {self.ipv6(1)}/64 dev {self.name} nodad"
        for self.aliases in range(1, ipv4 + 1):
            alias = f"{self.ipv4(self.aliases)}/18 dev {self.name} label {self.name}:{self.aliases}"
            yield f"address add {alias}"
        for number in range(2, ipv6 + 2):
            self.secondaries.append(self.ipv6(number))
            yield f"address add {self.ipv6(number)}/64 dev {self.name} nodad"

    def add(self):
        self.aliases += 1
        addrtool("--add", self.name, self.ipv4(self.aliases), NETMASK)
        self.listed.insert(0, self.ipv6(len(self.secondaries) + len(self.listed) + 2))
        addrtool("--add", self.name, self.listed[0], "64")

    def delete(self):
        addrtool("--del", self.ipv4(self.aliases), "--del", self.listed.pop(0))
        self.aliases -= 1

    def files(self):
        """The files, without the lengths of IPv6 addresses."""
        labels = ((n, f"{self.name}:{n}") for n in range(1, self.aliases + 1))
        files = {f"ifcfg-{l}": alias_text(l, self.ipv4(n), NETMASK) for n, l in labels}
        text = f"# first\nIPV6ADDR={self.ipv6(1)}\n# last\n"
        if self.listed:
            text += f'IPV6ADDR_SECONDARIES="{" ".join(self.listed)}"\n'
        return {f"ifcfg-{self.name}": text, **files}

    def listing(self):
        yield f"{self.ipv4(0)} {NETMASK} {self.name} 1"
        yield from (f"{self.ipv4(n + 1)} {NETMASK} {self.name} 0" for n in range(self.aliases))
        addresses = [self.ipv6(1), *self.secondaries, *self.listed]
        yield from (f"{address} 64 {self.name} 0" for address in addresses)


def files_of(interfaces):
    return {k: text for interface in interfaces for k, text in interface.files().items()}


def check(interfaces, when):
    """Returns how many addresses there are, and the kilobytes that their listing takes."""
    printed, memory = addrtool("--list")
    expected = sorted(line for interface in interfaces for line in interface.listing())
    require(sorted(printed.splitlines()) == expected, f"{when}: the listing differs")
    # The last entry of a list loses its length (required), so lengths are not looked at.
    files = {name: re.sub("/[0-9]+", "", text) for name, text in machine.read_files().items()}
    wanted = files_of(interfaces)
    wrong = [name for name in {*files, *wanted} if files.get(name) != wanted.get(name)]
    require(not wrong, f"{when}: files missing, too many or wrong: {wrong[:5]}")
    return len(expected), memory


def start(names, addresses):
    """Gives each interface the same share of the addresses, in the kernel and in the files."""
    interfaces = [Interface(number, name) for number, name in enumerate(names)]
    share = addresses // len(interfaces)
    for interface in interfaces:
        flush = f"address flush dev {interface.name}"
        machine.ip([flush, *interface.populate(share, share // 10)])
    machine.write_files(files_of(interfaces))
    return interfaces


def try_layout(names, addresses):
    links = [f"link add {name} type veth peer name {name}p" for name in names if name != "eth0"]
    machine.ip(["address flush dev eth0", *links, *(f"link set {name} up" for name in names)])
    few, memory_of_few = check(start(names, 0), "at the start")
    interfaces = start(names, addresses)
    check(interfaces, "populated")
    changed = [interfaces[number % len(interfaces)] for number in range(addresses // 50)]
    for interface in changed:
        interface.add()
    many, memory_of_many = check(interfaces, "added")
    _, memory_repeated = addrtool(*["--list"] * REPEATED_LISTINGS)
    if len(names) > 1:  # one layout is enough
        try_under_valgrind(interfaces[0])
        check(interfaces, "run under valgrind")
    for interface in reversed(changed):
        interface.delete()
    left, _ = check(interfaces, "deleted")

    growth = (memory_of_many - memory_of_few) * 1024 / (many - few)
    require(growth <= BYTES_PER_ADDRESS, f"{growth:.0f} bytes for each address")
    repeated = f"{REPEATED_LISTINGS} listings at once {memory_repeated} kB"
    require(memory_repeated <= memory_of_many + 256, f"{repeated}, one {memory_of_many} kB")
    print(f"{len(names)} interfaces, {many} addresses, {left} after {2 * len(changed)} deletes")
    print(f"    a listing of {few} takes {memory_of_few} kB, of {many} {memory_of_many} kB")
    print(f"    {growth:.0f} bytes for an address; {repeated}")


def try_under_valgrind(interface):
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
        done = machine.run([*VALGRIND, *arguments])
        is_good = done.returncode == status and "== Open " not in done.stderr
        require(is_good, f"valgrind {arguments}: status {done.returncode}: {done.stderr}")


def main():
    options = machine.parse_options(__doc__, addresses=(10000, 1000), interfaces=(50, 10))
    try_layout(["eth0"], options.addresses)
    try_layout([f"load{number}" for number in range(options.interfaces)], options.addresses)
    print(f"{DESCRIPTOR_LIMIT} descriptors suffice; {len(machine.failures)} failures")
    return 1 if machine.failures else 0


if __name__ == "__main__":
    sys.exit(main())
