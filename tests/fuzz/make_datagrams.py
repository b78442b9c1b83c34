#!/usr/bin/env python3
"""Writes the seeds of the kernel's datagrams, seeds/kernel_datagrams/*, from what they mean."""
import ipaddress
import pathlib
import struct

ADDRESS, LOCAL, LABEL, CACHEINFO, FLAGS = 1, 2, 3, 6, 8
NEWADDR, ERROR, DONE = 20, 2, 3
UNIVERSE, LINK, HOST = 0, 253, 254
PERMANENT, TEMPORARY = 0x80, 0x01


def padded(data):
    return data + bytes(-len(data) % 4)


def attribute(kind, payload, length=None):
    return padded(
        struct.pack("=HH", 4 + len(payload) if length is None else length, kind) + payload
    )


def message(body, kind=NEWADDR, length=None):
    size = 16 + len(body) if length is None else length
    return struct.pack("=IHHII", size, kind, 2, 0, 4711) + body


def address(text, prefix, label=None, index=2, scope=UNIVERSE, flags=PERMANENT, local=None):
    ip = ipaddress.ip_address(text)
    body = struct.pack("=BBBBI", 2 if ip.version == 4 else 10, prefix, flags, scope, index)
    body += attribute(ADDRESS, ip.packed)
    if local or ip.version == 4:
        body += attribute(LOCAL, ipaddress.ip_address(local or text).packed)
    if label:
        body += attribute(LABEL, label.encode() + b"\0")
    body += attribute(FLAGS, struct.pack("=I", flags))
    return message(body + attribute(CACHEINFO, bytes(16)))


def bare(*attributes, family=2):
    return message(struct.pack("=BBBBI", family, 24, PERMANENT, UNIVERSE, 2) + b"".join(attributes))


first = address("192.0.2.1", 24, "eth0")
quad = bytes([192, 0, 2, 7])
seeds = {
    "plain_and_aliases": first
    + address("192.0.2.10", 24, "eth0:1")
    + address("192.0.2.12", 32, "eth0:10")
    + address("192.0.2.11", 0, "eth0:web:2")
    + address("198.51.100.1", 8, "eth1", index=3),
    "same_suffix_twice": address("192.0.2.10", 24, "eth0:1") + address("192.0.2.11", 24, "eth0:1"),
    "loopback": address("127.0.0.1", 8, "lo", 1, HOST) + address("::1", 128, None, 1, HOST),
    "ipv6": address("2001:db8::10", 64)
    + address("fe80::1", 64, scope=LINK)
    + address("2001:db8::11", 64, flags=PERMANENT | TEMPORARY)
    + address("2001:db8::12", 64, flags=0)
    + address("::2", 128)
    + address("::3", 128, index=3),
    "point_to_point": address("192.0.2.2", 32, "tun0", 4, local="192.0.2.1")
    + address("2001:db8::2", 128, index=4, local="2001:db8::1"),
    "no_label": bare(attribute(ADDRESS, quad)),
    "no_address": bare(attribute(LOCAL, quad)) + bare(),
    "later_attribute_counts": bare(attribute(ADDRESS, quad), attribute(ADDRESS, bytes(4))),
    "short_address": bare(attribute(ADDRESS, quad), family=10) + bare(attribute(ADDRESS, b"\1\2")),
    "label_without_end": bare(attribute(ADDRESS, quad), attribute(LABEL, b"eth0:123")),
    "attribute_too_long": bare(attribute(ADDRESS, quad), attribute(LABEL, b"eth0:1", 200)),
    "attribute_too_short": bare(attribute(ADDRESS, quad, 3)),
    "nameless_interface": first + address("192.0.2.9", 24, index=0),
    "message_too_long": first + message(bytes(8), length=64),
    "message_too_short": first + message(bytes(8), length=15),
    "message_without_family": message(b"", length=16) + first,
    "unpadded_end": first + bare(attribute(ADDRESS, quad))[:-1],
    "other_family": message(struct.pack("=BBBBI", 7, 24, PERMANENT, UNIVERSE, 2)) + first,
    "done": message(bytes(4), DONE),
    "error": message(struct.pack("=i", -1) + bytes(16), ERROR),
    "cut_header": first[:15],
}

folder = pathlib.Path(__file__).parent / "seeds" / "kernel_datagrams"
folder.mkdir(parents=True, exist_ok=True)
for name, datagram in seeds.items():
    (folder / name).write_bytes(datagram)
