"""The machine that a walk changes: the sandbox's kernel, its files, and the built addrtool."""

import fcntl
import os
import pathlib
import shutil
import signal
import socket
import struct
import subprocess

import machine
from machine import SCRIPTS
from model import File, without_random

TIMEOUT_SECONDS = 20  # of a run

SYSCONFIG = SCRIPTS.parent
AWAY = SYSCONFIG / "away"  # where the directory is while it is missing
PROMOTION = pathlib.Path("/proc/sys/net/ipv4/conf/all/promote_secondaries")
SUSE_RELEASE = pathlib.Path("/etc/SuSE-release")
VEINFO = pathlib.Path("/proc/qv/veinfo")
CONFIGURATION = pathlib.Path("/etc/kel/kel.conf")

# linux/netlink.h, linux/rtnetlink.h, linux/if_addr.h, linux/sockios.h
NLMSG_DONE, RTM_NEWADDR, RTM_GETADDR = 3, 20, 22
NLM_F_REQUEST, NLM_F_ACK, NLM_F_DUMP, NLM_F_EXCL, NLM_F_CREATE = 1, 4, 0x300, 0x200, 0x400
IFA_ADDRESS, IFA_LOCAL, IFA_LABEL, IFA_F_SECONDARY = 1, 2, 3, 1
SIOCGIFFLAGS, SIOCSIFFLAGS, SIOCSIFNAME, IFF_UP = 0x8913, 0x8914, 0x8923, 1
HEADER, ADDRESS_MESSAGE, ATTRIBUTE = map(struct.Struct, ("=LHHLL", "=BBBBL", "=HH"))


class RealMachine:
    """Changes only what a sandbox keeps to itself."""

    def __init__(self, program):
        self.program = program
        self.netlink = socket.socket(socket.AF_NETLINK, socket.SOCK_RAW, socket.NETLINK_ROUTE)
        self.netlink.bind((0, 0))
        self.control = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.output, self.error = (os.memfd_create(name) for name in ("output", "error"))
        self.links = {"eth0": socket.if_nametoindex("eth0")}  # index by name
        self.scripts = SCRIPTS  # elsewhere while it is missing

        # A tmpfs is fast and can be read-only. No name server and no other host is asked.
        mount("-t", "tmpfs", "-o", "mode=755", "walk", SYSCONFIG)
        SCRIPTS.mkdir()
        no_name_server = SYSCONFIG / "nsswitch.conf"
        no_name_server.write_text("hosts: files\n")
        mount("--bind", no_name_server, "/etc/nsswitch.conf")
        for group in ("all", "default"):
            for setting, value in ("accept_dad", "0"), ("addr_gen_mode", "1"):
                pathlib.Path(f"/proc/sys/net/ipv6/conf/{group}/{setting}").write_text(value)
        VEINFO.parent.mkdir()
        CONFIGURATION.parent.mkdir(exist_ok=True)

    def reset(self):
        """Removes every link but lo. The peer of a veth device is removed with it."""
        links = [f"link delete {name}" for name in self.links if name != "lo"]
        machine.ip(["address flush dev lo", "link set lo down", "link set lo up", *links])
        self.links = {"lo": socket.if_nametoindex("lo")}
        self.change(["directory", "writable"])
        shutil.rmtree(self.scripts)
        self.scripts.mkdir()
        for setting in ("promote", "suse", "configuration"):
            self.change([setting, False])
        self.change(["veinfo", None])

    def possible_owners(self):
        """An ordinary user's sandbox may know no user but root."""
        owners = [(0, 0)]
        for owner in ((1, 1), (65534, 100)):
            try:
                os.chown(self.scripts, *owner)
                owners.append(owner)
            except OSError:
                pass
        os.chown(self.scripts, 0, 0)
        return owners

    # Changes that are not addrtool's

    def change(self, step):
        """The kernel's refusal raises OSError."""
        match step:
            case "link", name, kind:
                peer = f"peer{len(self.links)}"
                veth = [f"link add {name} type veth peer name {peer}", f"link set {peer} up"]
                machine.ip(veth if kind == "veth" else [f"link add {name} type {kind}"])
                self.links[name] = socket.if_nametoindex(name)
            case "up", name, is_up:
                flags = self.flags(name) & ~IFF_UP | is_up * IFF_UP
                request = struct.pack("=16sH22x", name.encode(), flags)
                fcntl.ioctl(self.control, SIOCSIFFLAGS, request)
            case "rename", old, new:
                request = struct.pack("=16s16s8x", old.encode(), new.encode())
                fcntl.ioctl(self.control, SIOCSIFNAME, request)
                self.links[new] = self.links.pop(old)
            case "promote", is_on:
                PROMOTION.write_text(str(int(is_on)))
            case "address", name, ip, prefix, scope, label:
                label = attribute(IFA_LABEL, label.encode() + b"\0")
                self.add_address(name, socket.AF_INET, ip, prefix, scope, label)
            case "ipv6", name, ip, prefix:
                self.add_address(name, socket.AF_INET6, ip, prefix)
            case "file", name, text, mode, owner:
                path = self.remove(name)
                if text is None:
                    path.mkdir()
                else:
                    path.write_bytes(text.encode())
                os.chown(path, *owner)
                path.chmod(mode)
            case "symlink", name, target:
                self.remove(name).symlink_to(target)
            case "remove", name:
                self.remove(name)
            case "directory", state:
                mount("-o", "remount,bind,rw", SYSCONFIG)
                self.scripts = self.scripts.rename(AWAY if state == "missing" else SCRIPTS)
                if state == "read-only":
                    mount("-o", "remount,bind,ro", SYSCONFIG)
            case "suse", is_suse:
                put_text(SUSE_RELEASE, "" if is_suse else None)
            case "veinfo", text:
                put_text(VEINFO, text)
            case "configuration", is_there:
                put_text(CONFIGURATION, "VARIABLE value\n" if is_there else None)

    def flags(self, name):
        answer = fcntl.ioctl(self.control, SIOCGIFFLAGS, struct.pack("=16s24x", name.encode()))
        return struct.unpack_from("=H", answer, 16)[0]

    def add_address(self, name, family, ip, prefix, scope=0, label=b""):
        body = ADDRESS_MESSAGE.pack(family, prefix, 0, scope, self.links[name]) + label
        body += attribute(IFA_LOCAL, socket.inet_pton(family, ip))
        body += attribute(IFA_ADDRESS, socket.inet_pton(family, ip))
        self.send(RTM_NEWADDR, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, body)
        (error,) = struct.unpack_from("=i", self.netlink.recv(65536), HEADER.size)
        if error:
            raise OSError(-error, os.strerror(-error))

    def send(self, kind, flags, body):
        length = HEADER.size + len(body)
        self.netlink.send(HEADER.pack(length, kind, NLM_F_REQUEST | flags, 0, 0) + body)

    def remove(self, name):
        """Returns the path, which is free then."""
        path = self.scripts / name
        if path.is_dir() and not path.is_symlink():
            path.rmdir()
        else:
            path.unlink(missing_ok=True)
        return path

    # addrtool

    def run(self, arguments, is_merged, operands_end_options):
        """Gives (status, standard output, standard error); merged, all comes from the former."""
        environment = {"PATH": os.environ["PATH"]}
        environment |= {"POSIXLY_CORRECT": "1"} if operands_end_options else {}
        streams = [
            (os.POSIX_SPAWN_OPEN, 0, "/dev/null", os.O_RDONLY, 0),
            (os.POSIX_SPAWN_DUP2, self.output, 1),
            (os.POSIX_SPAWN_DUP2, self.output if is_merged else self.error, 2),
        ]
        command = ["addrtool", *arguments]
        child = os.posix_spawn(self.program, command, environment, file_actions=streams)
        signal.signal(signal.SIGALRM, lambda *_: os.kill(child, signal.SIGKILL))
        signal.alarm(TIMEOUT_SECONDS)
        status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
        signal.alarm(0)
        return status, take_text(self.output), take_text(self.error)

    # What there is

    def is_up(self, name):
        return bool(self.flags(name) & IFF_UP)

    def addresses(self):
        """By interface: the IPv4 and the IPv6 addresses, in the kernel's order."""
        found = {name: ([], []) for name in self.links}
        names = {index: name for name, index in self.links.items()}
        self.send(RTM_GETADDR, NLM_F_DUMP, ADDRESS_MESSAGE.pack(0, 0, 0, 0, 0))
        while True:
            for kind, message in records(self.netlink.recv(65536), HEADER):
                if kind == NLMSG_DONE:
                    return found
                family, prefix, flags, scope, index = ADDRESS_MESSAGE.unpack_from(message)
                if index not in names:
                    continue  # the other end of a veth device, which has none
                values = dict(records(message[ADDRESS_MESSAGE.size :], ATTRIBUTE))
                ip = socket.inet_ntop(family, values.get(IFA_LOCAL, values.get(IFA_ADDRESS)))
                ipv4, ipv6 = found[names[index]]
                if family == socket.AF_INET:
                    label = os.fsdecode(values[IFA_LABEL].rstrip(b"\0"))
                    ipv4.append((ip, prefix, label, scope, bool(flags & IFA_F_SECONDARY)))
                else:
                    ipv6.append((ip, prefix))

    def files(self):
        """(name, File) of each, in order; a temporary file's name ends in .XXXXXX."""
        found = []
        for entry in os.scandir(self.scripts):
            status = entry.stat(follow_symlinks=False)
            file = File(None, status.st_mode & 0o7777, (status.st_uid, status.st_gid))
            if entry.is_symlink():
                file = File(None, target=os.readlink(entry.path))
            elif not entry.is_dir():
                with open(entry.path, "rb", buffering=0) as stream:
                    file.text = stream.read().decode(errors="backslashreplace")
            found.append((without_random(entry.name), file))
        return sorted(found, key=str)


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


def put_text(path, text):
    """None removes the file."""
    if text is None:
        path.unlink(missing_ok=True)
    else:
        path.write_text(text)


def attribute(kind, value):
    return ATTRIBUTE.pack(ATTRIBUTE.size + len(value), kind) + value + bytes(-len(value) % 4)


def records(data, header):
    """The kind and the content of each record. The length of each counts its header."""
    offset = 0
    while offset < len(data):
        length, kind, *_ = header.unpack_from(data, offset)
        yield kind, data[offset + header.size : offset + length]
        offset += length + 3 & ~3


def take_text(descriptor):
    """Returns the contents of a memory file and empties it."""
    size = os.lseek(descriptor, 0, os.SEEK_CUR)
    text = os.pread(descriptor, size, 0).decode(errors="backslashreplace")
    os.lseek(descriptor, 0, os.SEEK_SET)
    os.ftruncate(descriptor, 0)
    return text
