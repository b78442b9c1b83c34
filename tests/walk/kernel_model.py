"""A model of what the kernel and ifconfig(8) do with addresses.

Kernel keeps the interfaces and their addresses in the kernel's order. Its methods
are the requests that the kernel takes; a refused one raises OSError. The functions
at the end are the ifconfig commands. Each gives the exit status and the words.
"""

import dataclasses
import errno
import ipaddress
import operator
import os
import socket

LABEL_BYTES = 15
GLOBAL_SCOPE, LINK_SCOPE, HOST_SCOPE = 0, 253, 254
GLOBAL_RANK, SITE_RANK, LINK_RANK = 14, 5, 2  # of an IPv6 address


@dataclasses.dataclass(eq=False)
class Address4:
    ip: str
    prefix: int
    label: str
    scope: int = GLOBAL_SCOPE
    is_secondary: bool = False

    def shares_subnet_with(self, other):
        return self.prefix == other.prefix and self.subnet() == other.subnet()

    def subnet(self):
        return int.from_bytes(socket.inet_aton(self.ip), "big") >> (32 - self.prefix)


@dataclasses.dataclass
class Address6:
    ip: str  # in its shortest form
    prefix: int

    def scope_rank(self):
        address = ipaddress.IPv6Address(self.ip)
        if address.is_link_local or address.is_loopback:
            return LINK_RANK
        return SITE_RANK if address.is_site_local else GLOBAL_RANK


class Link:
    def __init__(self, is_up=False):
        self.is_up = is_up
        self.ipv4 = []
        self.ipv6 = []


def refuse(number):
    raise OSError(number, os.strerror(number))


def class_prefix(ip):
    """The prefix length of an address's class, which the kernel assumes first."""
    first = int(ip.split(".")[0])
    if first == 0 or ip == "255.255.255.255":
        return 0
    if 224 <= first < 240:
        refuse(errno.EINVAL)  # multicast
    return 8 if first < 128 else 16 if first < 192 else 24 if first < 224 else 32


def device_of(label):
    return label.partition(":")[0]


class Kernel:
    def __init__(self, newest_ipv6_first):
        """newest_ipv6_first: where this kernel puts a new address among those of its scope."""
        self.links = {"lo": Link(is_up=True)}
        self.links["lo"].ipv4.append(Address4("127.0.0.1", 8, "lo", HOST_SCOPE))
        self.links["lo"].ipv6.append(Address6("::1", 128))
        self.promotes_secondaries = False
        self.newest_ipv6_first = newest_ipv6_first

    # IPv4

    def add(self, link, address):
        """RTM_NEWADDR looks for the same address before anything else."""
        if any(other.ip == address.ip and other.shares_subnet_with(address) for other in link.ipv4):
            refuse(errno.EEXIST)
        self.insert(link, address)

    def insert(self, link, address):
        if address.ip == "0.0.0.0":
            return  # the kernel drops it and reports success
        address.is_secondary = False
        after_primaries = 0
        for position, other in enumerate(link.ipv4):
            if not other.is_secondary and address.scope <= other.scope:
                after_primaries = position + 1
            if other.shares_subnet_with(address):
                if other.ip == address.ip:
                    refuse(errno.EEXIST)
                if other.scope != address.scope:
                    refuse(errno.EINVAL)
                address.is_secondary = True
        link.ipv4.insert(len(link.ipv4) if address.is_secondary else after_primaries, address)

    def remove(self, link, address):
        """Removes the secondaries of a primary with it, or promotes the first of them."""
        secondaries = link.ipv4[link.ipv4.index(address) + 1 :] if not address.is_secondary else []
        secondaries = [o for o in secondaries if o.is_secondary and o.shares_subnet_with(address)]
        if secondaries and self.promotes_secondaries:
            self.promote(link, address, secondaries.pop(0))
            secondaries = []
        link.ipv4 = [other for other in link.ipv4 if other not in [address, *secondaries]]

    def promote(self, link, address, promoted):
        """Moves the new primary after the last primary between it and the removed one."""
        last_primary, place = link.ipv4.index(address), link.ipv4.index(promoted)
        for position in range(last_primary + 1, place):
            other = link.ipv4[position]
            if not other.is_secondary and address.scope <= other.scope:
                last_primary = position
        link.ipv4.insert(last_primary + 1, link.ipv4.pop(place))
        promoted.is_secondary = False

    def find_label(self, label):
        link = self.links[device_of(label)]
        return link, next((address for address in link.ipv4 if address.label == label), None)

    def set_address(self, label, ip):
        """SIOCSIFADDR: a label that is taken gets the new address in place of its own."""
        prefix = class_prefix(ip)
        link, old = self.find_label(label)
        if old and old.ip == ip:
            return
        if old:
            self.remove(link, old)
        scope = HOST_SCOPE if ip.startswith("127.") else GLOBAL_SCOPE
        self.insert(link, Address4(ip, prefix, label, scope))

    def set_netmask(self, label, prefix):
        """SIOCSIFNETMASK: an address that cannot be inserted again is lost without an error."""
        link, address = self.find_label(label)
        if not address:
            refuse(errno.EADDRNOTAVAIL)
        if address.prefix == prefix:
            return
        self.remove(link, address)
        try:
            self.insert(link, dataclasses.replace(address, prefix=prefix))
        except OSError:
            pass

    def set_alias_up(self, label, is_up):
        """SIOCSIFFLAGS of an alias: the interface keeps its state; down removes the address."""
        link, address = self.find_label(label)
        if not address:
            refuse(errno.EADDRNOTAVAIL)
        if not is_up:
            self.remove(link, address)

    # IPv6

    def insert_ipv6(self, name, address):
        ip = ipaddress.IPv6Address(address.ip)
        if name not in self.links:
            refuse(errno.ENODEV)
        if ip.is_multicast or ip.is_unspecified or ip.is_loopback and name != "lo":
            refuse(errno.EADDRNOTAVAIL)
        addresses = self.links[name].ipv6
        if any(other.ip == address.ip for other in addresses):
            refuse(errno.EEXIST)
        # A wider scope comes first.
        rank, ranks = address.scope_rank(), [other.scope_rank() for other in addresses]
        precedes = operator.ge if self.newest_ipv6_first else operator.gt
        behind = [position for position, other in enumerate(ranks) if precedes(rank, other)]
        addresses.insert(min(behind, default=len(addresses)), address)

    def remove_ipv6(self, name, ip):
        link = self.links[name]
        link.ipv6 = [address for address in link.ipv6 if address.ip != ip]

    # Interfaces

    def set_up(self, name, is_up):
        link = self.links[name]
        if link.is_up and not is_up:
            link.ipv6 = []
        link.is_up = is_up

    def rename(self, old, new):
        """The first address gets the name alone as its label; the others keep their suffix."""
        self.links[new] = self.links.pop(old)
        for number, address in enumerate(self.links[new].ipv4, start=1):
            _, colon, suffix = address.label.partition(":")
            tail = "" if number == 1 else f":{suffix if colon else number}"
            room = LABEL_BYTES - len(os.fsencode(tail))
            address.label = os.fsdecode(os.fsencode(new)[:room]) + tail


# The ifconfig commands


def attempt(words, request, function, *arguments):
    try:
        function(*arguments)
    except OSError as error:
        words.append(f"{request}: {error.strerror}\n")


def ifconfig_alias_up(kernel, label, text, netmask_prefix):
    """ifconfig LABEL TEXT netmask NETMASK up. A length in TEXT is set last."""
    host, slash, length = text.partition("/")
    try:
        ip = "127.0.0.1" if host == "localhost" else socket.inet_ntoa(socket.inet_aton(host))
    except OSError:
        complaint = f"{host}: Unknown host" if host else "Unknown host"
        return 1, f"{complaint}\nifconfig: `--help' gives usage information.\n"
    words = []
    attempt(words, "SIOCSIFADDR", kernel.set_address, label, ip)
    if ip != "0.0.0.0":
        attempt(words, "SIOCSIFFLAGS", kernel.set_alias_up, label, True)
    attempt(words, "SIOCSIFNETMASK", kernel.set_netmask, label, netmask_prefix)
    attempt(words, "SIOCSIFFLAGS", kernel.set_alias_up, label, True)
    if slash:
        attempt(words, "SIOCSIFNETMASK", kernel.set_netmask, label, int(length))
    # Only a refused address counts 1; any other refusal counts -1.
    status = 255 if any("SIOCSIFADDR" not in line for line in words) else len(words)
    return status, "".join(words)


def ifconfig_alias_down(kernel, label):
    words = []
    attempt(words, "SIOCSIFFLAGS", kernel.set_alias_up, label, False)
    return (255 if words else 0), "".join(words)


def ifconfig_add_ipv6(kernel, label, text, prefix, usage):
    """ifconfig LABEL add TEXT/PREFIX. A length in TEXT counts instead of PREFIX.

    usage is what ifconfig prints when the length is too long.
    """
    host, slash, length = text.partition("/")
    prefix = int(length) if slash else prefix
    if prefix > 128:
        return 3, usage
    try:
        ip = socket.inet_ntop(socket.AF_INET6, socket.inet_pton(socket.AF_INET6, host))
    except OSError:
        return 1, f"{host}: Resolver Error 0 (no error)\n"
    name = device_of(label)
    if name not in kernel.links:
        return 1, "SIOGIFINDEX: No such device\n"
    words = []
    attempt(words, "SIOCSIFADDR", kernel.insert_ipv6, name, Address6(ip, prefix))
    return (1 if words else 0), "".join(words)
