"""Chooses the steps of a walk at random, with an eye on the model: most operands mean something."""

import random

from kernel_model import GLOBAL_SCOPE, HOST_SCOPE, LINK_SCOPE, device_of
from machine import is_temporary
from model import is_too_long

NAMES = """eth0 eth1 eth10 br0 Zeta été eth0.100 wlp2s0f0u1i2 enp193s0f1np1 br-0a1b2c3d4e5
    enx001122334455""".split()  # of up to 15 bytes
MAIN_NETWORKS = ["203.0.113.", "203.0.113.", "203.0.113.", "192.0.2.", "10.0.0."]
NETWORKS = ["192.0.2.", "192.0.2.", "198.51.100.", "10.0.0.", "10.0.0.", "10.0.1.", "172.16.5."]
PREFIXES = [24] * 12 + [16, 16, 8, 25, 30, 32]
NETMASKS = ["255.255.255.0"] * 12
NETMASKS += """255.255.0.0 255.0.0.0 255.255.255.128 255.255.255.255 255.0.255.0 0.0.0.1
    0.0.0.0""".split()
BAD_NETMASKS = ["24", "255.255.255", "", "255.255.255.256", "0xffffff00", "255.255.255.0 ", "/24"]
ODD_IPV4 = [""]
ODD_IPV4 += """10.0.0.013 010.0.0.1 192.0.2 300.0.0.1 localhost no.such.name 224.0.0.1 0.0.0.0
    255.255.255.255 127.0.0.5 169.254.1.1 240.0.0.1 0x0a.0.0.9 10.0.0.9/24 192.0.2.9/16
    172.16.5.9/30""".split()
IPV6_NETWORKS = ["2001:db8::", "2001:db8:1::", "fd00:1::"]
ODD_IPV6 = """fe80::5 ff02::5 2001:db8:::5 : ::1 :: ::2 fec0::1 ::ffff:192.0.2.1 2001:db8::g
    1:2:3:4:5:6:7:8:9 2001:db8::6/64 2001:db8::7/48 fe80::5%eth0""".split()
PREFIX_LENGTHS = ["64"] * 12 + ["0", "128", "48", "+64", " 64", "64 ", "0064"]
BAD_PREFIX_LENGTHS = ["129", "65535", "65536", "-1", "x", "", "64x", "0x40"]
SUFFIXES = ["web", "01", "1a", "a", "99", "65535", "0", "-1", "2", "3", "5", "10", "Z", "é"]
MODES = [0o644] * 5 + [0o600, 0o400, 0o444, 0o755, 0o4755, 0]
FOREIGN_LINES = ["DEVICE=eth0\n", "# a comment\n", "\n", "ONBOOT=yes\n", "IPV6INIT=yes\n"]
FOREIGN_LINES += ["NOTE='a \"quoted\" text'\n", "IPV6ADDR_EXTRA=2001:db8::1/64\n"]
FOREIGN_LINES += ["  IPV6ADDR=2001:db8::2/64\n", "no assignment\n", "last\r\n", "NAME=é\n"]
ODD_ENTRIES = '2001:db8::7 zz/64 /64 ::3/ ::3/65536 ::3/x ::3/64/3 "::3/64 # =::3/1'.split()
TARGET = "elsewhere"  # of all symbolic links
DIRECTORY_STATES = ["writable", "writable", "read-only", "missing"]
DISTURBANCES = """main alias alias ipv6 up up rename file file alias_file remove directory writable
    writable mkdir symlink target suse promote veinfo configuration""".split()
RUNS = ["list"] * 2 + ["add"] * 4 + ["delete"] * 4 + ["check", "several", "several", "mistaken"]
BAD_OPTIONS = ["-x", "--nonsense", "--list=3", "--helper", "-", "--", "--main", "--m", "-lz"]


class Dice:
    def __init__(self, seed, owners):
        """owners: (user, group) pairs that files may have."""
        self.random = random.Random(seed)
        self.owners = owners

    def one(self, choices):
        return self.random.choice(list(choices))

    def chance(self, probability):
        return self.random.random() < probability

    # Operands

    def ipv4(self, world):
        if self.chance(0.08):
            return self.one(ODD_IPV4)
        known = [address.ip for link in world.kernel.links.values() for address in link.ipv4]
        if known and self.chance(0.08):
            return self.one(known)
        return self.new_ipv4(NETWORKS)

    def new_ipv4(self, networks):
        return self.one(networks) + str(self.random.randint(1, 14))

    def ipv6(self, world):
        if self.chance(0.08):
            return self.one(ODD_IPV6)
        known = [address.ip for link in world.kernel.links.values() for address in link.ipv6]
        ip = self.one(known) if known and self.chance(0.08) else self.new_ipv6()
        return self.respelled(ip) if self.chance(0.3) else ip

    def new_ipv6(self):
        return self.one(IPV6_NETWORKS) + f"{self.random.randint(1, 30):x}"

    def respelled(self, ip):
        return self.one([ip.upper(), ip.replace("2001:", "2001:0"), ip.replace("::", ":0:0::")])

    def name(self, world):
        if self.chance(0.04):
            return self.one(["eth7", "eth0:1", "lo", "", "Eth0"])
        return self.one(world.kernel.links)

    def netmask(self):
        return self.one(BAD_NETMASKS if self.chance(0.05) else NETMASKS)

    def prefix_length(self):
        return self.one(BAD_PREFIX_LENGTHS if self.chance(0.06) else PREFIX_LENGTHS)

    # Changes that are not addrtool's

    def setting(self, world):
        """The first steps: interfaces, addresses and files."""
        for name in ["eth0", *self.random.sample(NAMES[1:], self.random.randint(2, 4))]:
            yield ["link", name, self.one(["veth", "veth", "bridge"])]
            if self.chance(0.85):
                yield ["up", name, True]
            if self.chance(0.85):
                yield from self.addresses(name)
            if self.chance(0.75):
                yield self.interface_file(name, world)
        if self.chance(0.3):
            yield ["promote", True]

    def addresses(self, name):
        if self.chance(0.8):
            for _ in range(self.random.randint(0, 2)):
                yield self.main_address(name)
            for _ in range(self.one([0, 1, 3, 6])):
                yield self.alias(name)
            if self.chance(0.1):  # on a name of 13 bytes, these are nearly all numbers that fit
                for number in range(1, 10):
                    label = f"{name}:{number}"
                    if self.chance(0.9) and not is_too_long(label):
                        yield ["address", name, f"10.0.1.{number + 20}", 24, GLOBAL_SCOPE, label]
        for _ in range(self.one([0, 1, 3, 5])):
            yield ["ipv6", name, self.new_ipv6(), 64]

    def scope(self):
        return self.one([GLOBAL_SCOPE] * 20 + [LINK_SCOPE, HOST_SCOPE])

    def main_address(self, name):
        ip = self.new_ipv4(MAIN_NETWORKS)
        return ["address", name, ip, self.one(PREFIXES), self.scope(), name]

    def alias(self, name):
        suffix = self.one(SUFFIXES) if self.chance(0.5) else str(self.random.randint(1, 12))
        label = f"{name}:{suffix}"
        if is_too_long(label):
            label = name
        return ["address", name, self.new_ipv4(NETWORKS), self.one(PREFIXES), self.scope(), label]

    def interface_file(self, label, world):
        known = [address.ip for address in world.kernel.links[device_of(label)].ipv6]
        lines = self.random.sample(FOREIGN_LINES, self.random.randint(0, 4))
        for _ in range(self.one([0, 1, 1, 1, 2])):
            lines.insert(self.random.randint(0, len(lines)), self.assignment("IPV6ADDR", 1, known))
        for _ in range(self.one([0, 1, 1, 1, 1, 2])):
            place = self.random.randint(0, len(lines))
            count = 600 if self.chance(0.02) else self.random.randint(0, 4)
            lines.insert(place, self.assignment("IPV6ADDR_SECONDARIES", count, known))
        text = "".join(lines)
        if self.chance(0.1):
            text = text.rstrip("\n")
        return ["file", f"ifcfg-{label}", text, self.one(MODES), self.one(self.owners)]

    def assignment(self, key, count, known):
        """A line of an interface's file; a few have odd blanks, keys and entries."""
        entries, odd = [], self.chance(0.15)
        for _ in range(count):
            ip = self.one(known) if known and self.chance(0.6) else self.new_ipv6()
            ip = self.respelled(ip) if self.chance(0.2) else ip
            length = self.one(["/64", "/64", "/64", "/48", "/0"])
            entries.append(ip + ("" if odd and self.chance(0.3) else length))
        quote = self.one(["", '"', '"', '"', "'"])
        if odd and self.chance(0.5):
            entries.insert(self.random.randint(0, len(entries)), self.one(ODD_ENTRIES))
        space = self.one([" ", "  ", "\t"]) if odd else " "
        before, after = (self.one(["", " ", "\t", "\r"]) if odd else "" for _ in range(2))
        name = key
        if odd and self.chance(0.3):
            name = self.one([key + " ", key + "X", "#" + key, " " + key])
        return f"{name}={before}{quote}{space.join(entries)}{quote}{after}\n"

    def disturbance(self, world):
        """What somebody else changes between two runs."""
        name = self.one(name for name in world.kernel.links if name != "lo")
        file = self.one([file for file in world.files if not is_temporary(file)] or ["ifcfg-eth0"])
        kind = self.one(DISTURBANCES)
        down = [name for name, link in world.kernel.links.items() if not link.is_up]
        return {
            "main": lambda: self.main_address(name),
            "alias": lambda: self.alias(name),
            "ipv6": lambda: ["ipv6", name, self.ipv6_to_set_up(), self.one([64, 64, 128, 48])],
            "up": lambda: ["up", name, self.chance(0.7)],
            "rename": lambda: ["rename", self.one([name, *down]), self.one(NAMES)],
            "file": lambda: self.interface_file(name, world),
            "alias_file": lambda: self.interface_file(f"{name}:{self.random.randint(1, 4)}", world),
            "remove": lambda: ["remove", file],
            "directory": lambda: ["directory", self.one(DIRECTORY_STATES)],
            "writable": lambda: ["directory", "writable"],
            "mkdir": lambda: ["file", self.file_of(name), None, 0o755, self.one(self.owners)],
            "symlink": lambda: ["symlink", self.file_of(name, ""), TARGET],
            "target": lambda: ["file", TARGET, *self.interface_file(name, world)[2:]],
            "configuration": lambda: ["configuration", self.chance(0.5)],
            "suse": lambda: ["suse", self.chance(0.5)],
            "promote": lambda: ["promote", self.chance(0.4)],
            "veinfo": lambda: ["veinfo", self.veinfo(world)],
        }[kind]()

    def file_of(self, name, *more_suffixes):
        return f"ifcfg-{name}" + self.one([*more_suffixes, "", ":1", ":2"])

    def ipv6_to_set_up(self):
        return self.one(["fe80::7", "::2", "fec0::7"]) if self.chance(0.15) else self.new_ipv6()

    def veinfo(self, world):
        if self.chance(0.2):
            return None
        count = self.random.randint(0, 3)
        return "".join(f"{n}: {self.ipv4(world)} {self.ipv6(world)}\n" for n in range(count))

    # Runs

    def run(self, world):
        arguments = getattr(self, self.one(RUNS))(world)
        return ["run", arguments, self.chance(0.5), self.chance(0.05)]

    def list(self, _):
        return [self.one(["-l", "--list", "--l"])]

    def add(self, world):
        operands = [self.ipv4(world), self.netmask()]
        if self.chance(0.45):
            operands = [self.ipv6(world), self.prefix_length()]
        if self.chance(0.02):
            operands = operands[::-1]
        if operands[-1].startswith("-"):
            operands.insert(0, "--")
        return [self.one(["-a", "--add", "--ad"]), self.name(world), *operands]

    def delete(self, world):
        return [self.one(["-d", "--del", "--d"]), self.address_to_delete(world)]

    def address_to_delete(self, world):
        links = world.kernel.links.values()
        if self.chance(0.12):
            return self.ipv4(world) if self.chance(0.5) else self.ipv6(world)
        if self.chance(0.5):
            known = [address.ip for link in links for address in link.ipv4 if ":" in address.label]
            return self.one(known) if known else self.ipv4(world)
        known = [address.ip for link in links for address in link.ipv6]
        ip = self.one(known) if known else self.ipv6(world)
        return self.respelled(ip) if self.chance(0.2) else ip

    def check(self, world):
        words = (world.veinfo or "").split()
        text = self.one(words) if words and self.chance(0.6) else self.ipv4(world)
        return [self.one(["-v", "--qv-assigned-ip"]), text[: self.random.randint(0, 20)]]

    def several(self, world):
        actions = [self.list, self.delete, self.delete, self.check]
        parts = [self.one(actions)(world) for _ in range(self.random.randint(1, 3))]
        if self.chance(0.5):
            parts.append(self.add(world))
        if self.chance(0.15):
            parts.append([self.one(["-h", "--help", "-hl"])])
        self.random.shuffle(parts)
        return [argument for part in parts for argument in part]

    def mistaken(self, world):
        arguments = self.several(world)
        position = self.random.randint(0, len(arguments))
        choice = self.random.random()
        if choice < 0.5:
            arguments.insert(position, self.one(BAD_OPTIONS))
        elif choice < 0.7:
            arguments.insert(position, "operand")
        elif len(arguments) > 1:
            del arguments[position - 1]
        return arguments
