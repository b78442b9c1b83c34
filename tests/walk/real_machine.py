"""The machine that a walk changes: the sandbox's kernel, its files, and the built addrtool."""

import errno
import fcntl
import os
import pathlib
import shutil
import signal
import socket
import struct
import subprocess

from machine import ip as run_ip
from model import SCRIPTS, File, without_random

TIMEOUT_SECONDS = 20  # of a run

SYSCONFIG = pathlib.Path(SCRIPTS).parent
AWAY = SYSCONFIG / "away"  # where the directory is while it is missing
SUSE_RELEASE = pathlib.Path("/etc/SuSE-release")
VEINFO = pathlib.Path("/proc/qv/veinfo")
CONFIGURATION = pathlib.Path("/etc/kel/kel.conf")
NETWORK_SETTINGS = pathlib.Path("/proc/sys/net")

# linux/netlink.h, linux/rtnetlink.h, linux/if_addr.h, linux/sockios.h
NLMSG_DONE, RTM_NEWADDR, RTM_GETADDR = 3, 20, 22
NLM_F_REQUEST, NLM_F_ACK, NLM_F_DUMP, NLM_F_EXCL, NLM_F_CREATE = 1, 4, 0x300, 0x200, 0x400
IFA_ADDRESS, IFA_LOCAL, IFA_LABEL, IFA_F_SECONDARY = 1, 2, 3, 1
SIOCGIFFLAGS, SIOCSIFFLAGS, SIOCSIFNAME, IFF_UP = 0x8913, 0x8914, 0x8923, 1
HEADER, ADDRESS_MESSAGE = struct.Struct("=LHHLL"), struct.Struct("=BBBBL")


class RealMachine:
    """Changes only what a sandbox keeps to itself."""

    def __init__(self, program):
        self.program = program
        self.netlink = socket.socket(
            socket.AF_NETLINK, socket.SOCK_RAW | socket.SOCK_CLOEXEC, socket.NETLINK_ROUTE
        )
        self.netlink.bind((0, 0))
        self.control = socket.socket(socket.AF_INET, socket.SOCK_DGRAM | socket.SOCK_CLOEXEC)
        self.output, self.error = (os.memfd_create(name) for name in ("output", "error"))
        self.links = {"eth0": socket.if_nametoindex("eth0")}  # index by name
        self.scripts = pathlib.Path(SCRIPTS)
        self.prepare()

    def prepare(self):
        """A tmpfs is fast and can be read-only. No name server and no other host is asked."""
        mount("-t", "tmpfs", "-o", "mode=755", "walk", str(SYSCONFIG))
        self.scripts.mkdir()
        no_name_server = SYSCONFIG / "nsswitch.conf"
        no_name_server.write_text("hosts: files\n")
        mount("--bind", str(no_name_server), "/etc/nsswitch.conf")
        for group in ("all", "default"):
            settings = NETWORK_SETTINGS / "ipv6/conf" / group
            (settings / "accept_dad").write_text("0")
            (settings / "addr_gen_mode").write_text("1")
        VEINFO.parent.mkdir()
        CONFIGURATION.parent.mkdir(exist_ok=True)

    def reset(self):
        """Removes every link but lo. The peer of a veth device is removed with it."""
        links = [f"link delete {name}" for name in self.links if name != "lo"]
        run_ip(["address flush dev lo", "link set lo down", "link set lo up", *links])
        self.links = {"lo": socket.if_nametoindex("lo")}
        self.set_scripts_error(0)
        shutil.rmtree(self.scripts)
        self.scripts.mkdir()
        self.set_promotion(False)
        self.set_suse(False)
        self.set_veinfo(None)
        self.set_configuration(False)

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

    def add_link(self, name, kind):
        if kind == "veth":
            peer = f"peer{len(self.links)}"
            run_ip([f"link add {name} type veth peer name {peer}", f"link set {peer} up"])
        else:
            run_ip([f"link add {name} type {kind}"])
        self.links[name] = socket.if_nametoindex(name)

    def rename(self, old, new):
        fcntl.ioctl(self.control, SIOCSIFNAME, struct.pack("=16s16s8x", old.encode(), new.encode()))
        self.links[new] = self.links.pop(old)

    def is_up(self, name):
        return bool(self.flags(name) & IFF_UP)

    def flags(self, name):
        answer = fcntl.ioctl(self.control, SIOCGIFFLAGS, struct.pack("=16s24x", name.encode()))
        return struct.unpack_from("=H", answer, 16)[0]

    def set_up(self, name, is_up):
        flags = self.flags(name) & ~IFF_UP | (IFF_UP if is_up else 0)
        fcntl.ioctl(self.control, SIOCSIFFLAGS, struct.pack("=16sH22x", name.encode(), flags))

    def set_promotion(self, is_on):
        (NETWORK_SETTINGS / "ipv4/conf/all/promote_secondaries").write_text(str(int(is_on)))

    def add_address(self, name, ip, prefix, scope, label):
        """The kernel's refusal raises OSError."""
        family = socket.AF_INET6 if ":" in ip else socket.AF_INET
        packed = socket.inet_pton(family, ip)
        body = ADDRESS_MESSAGE.pack(family, prefix, 0, scope, self.links[name])
        body += attribute(IFA_LOCAL, packed) + attribute(IFA_ADDRESS, packed)
        if label:
            body += attribute(IFA_LABEL, label.encode() + b"\0")
        self.send(RTM_NEWADDR, NLM_F_ACK | NLM_F_CREATE | NLM_F_EXCL, body)
        (error,) = struct.unpack_from("=i", self.netlink.recv(65536), HEADER.size)
        if error:
            raise OSError(-error, os.strerror(-error))

    def put_file(self, name, file):
        path = self.scripts / name
        self.remove_file(name)
        if file.target:
            path.symlink_to(file.target)
            return
        if file.is_directory():
            path.mkdir()
        else:
            path.write_bytes(file.text.encode())
        os.chown(path, *file.owner)
        path.chmod(file.mode)

    def remove_file(self, name):
        path = self.scripts / name
        if path.is_dir() and not path.is_symlink():
            path.rmdir()
        else:
            path.unlink(missing_ok=True)

    def set_scripts_error(self, error):
        """Makes writes to the directory fail with EROFS or ENOENT, or succeed again."""
        mount("-o", "remount,bind,rw", str(SYSCONFIG))
        place = AWAY if error == errno.ENOENT else pathlib.Path(SCRIPTS)
        self.scripts.rename(place)
        self.scripts = place
        if error == errno.EROFS:
            mount("-o", "remount,bind,ro", str(SYSCONFIG))

    def set_suse(self, is_suse):
        if is_suse:
            SUSE_RELEASE.touch()
        else:
            SUSE_RELEASE.unlink(missing_ok=True)

    def set_veinfo(self, text):
        if text is None:
            VEINFO.unlink(missing_ok=True)
        else:
            VEINFO.write_text(text)

    def set_configuration(self, is_there):
        if is_there:
            CONFIGURATION.write_text("VARIABLE value\n")
        else:
            CONFIGURATION.unlink(missing_ok=True)

    # addrtool

    def run(self, arguments, is_merged, operands_end_options):
        """Gives (status, standard output, standard error); merged, all comes from the former."""
        error = self.output if is_merged else self.error
        environment = {"PATH": os.environ["PATH"]}
        if operands_end_options:
            environment["POSIXLY_CORRECT"] = "1"
        child = os.posix_spawn(
            self.program,
            ["addrtool", *arguments],
            environment,
            file_actions=[
                (os.POSIX_SPAWN_OPEN, 0, "/dev/null", os.O_RDONLY, 0),
                (os.POSIX_SPAWN_DUP2, self.output, 1),
                (os.POSIX_SPAWN_DUP2, error, 2),
            ],
        )
        signal.signal(signal.SIGALRM, lambda *_: os.kill(child, signal.SIGKILL))
        signal.alarm(TIMEOUT_SECONDS)
        status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
        signal.alarm(0)
        return status, take_text(self.output), take_text(self.error)

    # What there is

    def addresses(self):
        """By interface: the IPv4 and the IPv6 addresses, in the kernel's order."""
        found = {name: ([], []) for name in self.links}
        names = {index: name for name, index in self.links.items()}
        self.send(RTM_GETADDR, NLM_F_DUMP, ADDRESS_MESSAGE.pack(0, 0, 0, 0, 0))
        while True:
            datagram, offset = self.netlink.recv(65536), 0
            while offset < len(datagram):
                length, kind, *_ = HEADER.unpack_from(datagram, offset)
                if kind == NLMSG_DONE:
                    return found
                self.take_address(datagram[offset + HEADER.size : offset + length], names, found)
                offset += length + 3 & ~3

    @staticmethod
    def take_address(message, names, found):
        family, prefix, flags, scope, index = ADDRESS_MESSAGE.unpack_from(message)
        if index not in names:
            return  # lo, or the other end of a veth device, which has none
        values, offset = {}, ADDRESS_MESSAGE.size
        while offset < len(message):
            length, kind = struct.unpack_from("=HH", message, offset)
            values[kind] = message[offset + 4 : offset + length]
            offset += length + 3 & ~3
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

    def send(self, kind, flags, body):
        length = HEADER.size + len(body)
        self.netlink.send(HEADER.pack(length, kind, NLM_F_REQUEST | flags, 0, 0) + body)


def mount(*arguments):
    subprocess.run(["mount", *arguments], check=True)


def attribute(kind, value):
    return struct.pack("=HH", 4 + len(value), kind) + value + bytes(-len(value) % 4)


def take_text(descriptor):
    """Returns the contents of a memory file and empties it."""
    size = os.lseek(descriptor, 0, os.SEEK_CUR)
    if not size:
        return ""
    text = os.pread(descriptor, size, 0).decode(errors="backslashreplace")
    os.lseek(descriptor, 0, os.SEEK_SET)
    os.ftruncate(descriptor, 0)
    return text
