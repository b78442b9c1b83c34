"""A model of addrtool. It is written from the manual page and docs/changes.md, not from the source.

World is all that a run can see and change. run() changes it as one run of addrtool
does, and gives what that run should print and its exit status.
"""

import dataclasses
import errno
import ipaddress
import os
import re
import socket

import command_line
import interface_file
import kernel_model
from kernel_model import GLOBAL_SCOPE, LABEL_BYTES, Kernel

IFCONFIG = "/sbin/ifconfig"
SCRIPTS = "/etc/sysconfig/network-scripts"
USAGE = """\
Usage: addrtool [OPTIONS]...

  -l,  --list                                  list all addresses in format: "<ipaddr> <netmask> <interface> <is-primary-ip>\\n ..."
  -a,  --add <interface> <ipaddress> <netmask> add IP on <interface>
  -d,  --del <ipaddress>                       delete IP
  -h,  --help                                  display this help and exit
  -v,  --qv-assigned-ip <ipaddress>            determine if <ipaddress> was assigned to this VE
"""
LEFTOVERS = "Some parameters in command string are left unprocessed. Check parameters please."


@dataclasses.dataclass
class File:
    """A file of the directory; a directory or a symbolic link has no text."""

    text: str | None
    mode: int = 0o644
    owner: tuple = (0, 0)
    target: str | None = None  # of a symbolic link, in the same directory

    def is_directory(self):
        return self.text is None and self.target is None


class World:
    def __init__(self, newest_ipv6_first, ifconfig_usage):
        self.kernel = Kernel(newest_ipv6_first)
        self.ifconfig_usage = ifconfig_usage
        self.files = {}  # by name, in SCRIPTS; those that a failure leaves behind end with .XXXXXX
        self.scripts_error = 0  # why nothing can be written there: 0, EROFS or ENOENT
        self.is_suse = False
        self.veinfo = None
        self.has_configuration = False


class Failure(Exception):
    """An action failed; the message goes to standard error."""


class Streams:
    """What a run prints: by stream, and merged for both streams in one file."""

    def __init__(self):
        self.output = self.error = self.merged = ""

    def print(self, text):
        self.output += text
        self.merged += text

    def complain(self, text):
        self.error += text
        self.merged += text


@dataclasses.dataclass
class Interface:
    """The managed addresses of an interface."""

    name: str
    mains: list
    aliases: list  # of (suffix, address), in the order of the suffixes
    ipv6: list


def inventory(kernel):
    found = []
    for name, link in sorted(kernel.links.items(), key=lambda item: os.fsencode(item[0])):
        listed = [address for address in link.ipv4 if address.scope == GLOBAL_SCOPE]
        mains = [address for address in listed if ":" not in address.label]
        aliases = {}
        for address in listed:
            if ":" in address.label:  # of several addresses with one label the first counts
                aliases.setdefault(address.label.partition(":")[2], address)
        ipv6 = [address for address in link.ipv6 if is_managed_ipv6(address.ip)]
        if mains or aliases or ipv6:
            found.append(Interface(name, mains, sorted(aliases.items()), ipv6))
    return found


def is_managed_ipv6(ip):
    address = ipaddress.IPv6Address(ip)
    has_smaller_scope = address.is_loopback or address.is_link_local or address.is_site_local
    return not has_smaller_scope and ip != "::2"


def netmask_of(prefix):
    """A prefix length of 0 shows as 255.255.255.255."""
    bits = 0xFFFFFFFF << (32 - (prefix or 32)) & 0xFFFFFFFF
    return socket.inet_ntoa(bits.to_bytes(4, "big"))


def prefix_of_netmask(text):
    """The position of the lowest set bit, counted from the left; None if it is no netmask."""
    try:
        mask = int.from_bytes(socket.inet_pton(socket.AF_INET, text), "big")
    except OSError:
        return None
    return 32 - ((mask & -mask).bit_length() - 1) if mask else 0


def listing(world):
    lines = []
    for interface in inventory(world.kernel):
        ipv4 = interface.mains + [address for _, address in interface.aliases]
        for position, address in enumerate(ipv4):
            lines.append(
                f"{address.ip} {netmask_of(address.prefix)} {interface.name}"
                f" {int(position == 0)}\n"
            )
        lines += [
            f"{address.ip} {address.prefix} {interface.name} 0\n" for address in interface.ipv6
        ]
    return "".join(lines)


class Run:
    def __init__(self, world):
        self.world, self.kernel = world, world.kernel
        self.streams = Streams()
        self.last_error = 0 if world.has_configuration else errno.ENOENT  # of a system call

    def main(self, arguments, operands_end_options):
        """Returns the exit status."""
        line = command_line.parse(arguments, operands_end_options)
        self.streams.complain(line.complaints)
        interface = ([""] + [argument for letter, argument in line.options if letter == "a"])[-1]
        actions = [option for option in line.options if option[0] in "lhdv"]
        if interface and len(line.operands) != 2 or not actions and not interface:
            return self.usage()
        if line.operands and not interface:
            self.report(f"{LEFTOVERS}\n")
            return 1
        for letter, argument in sorted(actions, key=lambda option: option[0] in "dv"):
            if letter == "h":
                return self.usage()
            {"l": self.list, "d": self.delete, "v": self.check_container}[letter](argument)
        if interface:
            self.add(interface, *line.operands)
        return 0

    def report(self, text):
        """A message of the support library goes to both streams."""
        self.streams.complain(text)
        self.streams.print(text)

    def usage(self):
        self.streams.complain(USAGE)
        return 2

    def list(self, _):
        self.streams.print(listing(self.world))

    def check_container(self, text):
        veinfo = self.world.veinfo
        if veinfo is None:
            self.last_error = errno.ENOENT
        is_found = veinfo is not None and any(text in line for line in veinfo.split("\n"))
        self.streams.print(str(int(is_found)))

    def ifconfig(self, command, result):
        status, words = result
        self.streams.complain(words)
        if status:
            raise Failure(f"{IFCONFIG} {command} exited with non-zero status {status}")

    def alias_up(self, label, text, prefix):
        self.ifconfig(
            f"'{label}' '{text}' netmask  '{netmask_of(prefix)}' up",
            kernel_model.ifconfig_alias_up(self.kernel, label, text, prefix or 32),
        )

    # Adding

    def add(self, name, text, netmask):
        if ":" in text:
            self.add_ipv6(name, text, netmask)
        else:
            self.add_ipv4(name, text, netmask)

    def add_ipv4(self, name, text, netmask):
        prefix = prefix_of_netmask(netmask)
        if prefix is None:
            raise Failure(f"{netmask}: cannot convert to netmask")
        interface = next((each for each in inventory(self.kernel) if each.name == name), None)
        if not interface:
            raise Failure(f"{name}: no such network interface.")
        taken = {suffix for suffix, _ in interface.aliases}
        number = next(number for number in range(1, 65537) if str(number) not in taken)
        label = f"{name}:{number}"
        if number > 65535 or is_too_long(label):
            raise Failure(f"{name}: no free alias number.")
        self.alias_up(label, text, prefix)
        lines = [f'DEVICE="{label}"\n', f'IPADDR="{text}"\n', f'NETMASK="{netmask_of(prefix)}"\n']
        if self.world.is_suse:
            lines.append("STARTMODE='onboot'\n")
        else:
            self.last_error = errno.ENOENT
        error = self.replace_file(label, "".join(lines))
        if error:
            raise Failure(f"{SCRIPTS}/ifcfg-{label}: {os.strerror(error)}")

    def add_ipv6(self, name, text, length):
        prefix = interface_file.parse_prefix(length)
        if prefix is None:
            raise Failure(f"{length}: cannot convert to int")
        require_short_label(name)
        self.ifconfig(
            f"{name} add {text}/{prefix}",
            kernel_model.ifconfig_add_ipv6(
                self.kernel, name, text, prefix, self.world.ifconfig_usage
            ),
        )
        self.edit_file(name, interface_file.add_to_list, text, prefix)

    # Deleting

    def delete(self, text):
        if ":" in text:
            self.delete_ipv6(text)
        else:
            self.delete_ipv4(text)

    def delete_ipv4(self, text):
        for interface in inventory(self.kernel):
            if any(address.ip == text for address in interface.mains):
                raise Failure(f"{text}: cannot delete main IP on interface")
            suffix = next(
                (suffix for suffix, address in interface.aliases if address.ip == text), None
            )
            if suffix is not None:
                self.delete_alias(interface, suffix)
                return
        raise Failure(f"{text}: not configured.")

    def delete_alias(self, interface, suffix):
        label = label_of(interface.name, suffix)
        self.ifconfig(f"'{label}' down", kernel_model.ifconfig_alias_down(self.kernel, label))
        self.remove_file(label)
        self.restore_aliases(interface, suffix)

    def restore_aliases(self, before, deleted_suffix):
        """Restores the aliases that vanished with the deleted one."""
        after = [each for each in inventory(self.kernel) if each.name == before.name]
        left = {suffix for each in after for suffix, _ in each.aliases}
        for suffix, address in before.aliases:
            if suffix != deleted_suffix and suffix not in left:
                self.alias_up(label_of(before.name, suffix), address.ip, address.prefix)

    def delete_ipv6(self, text):
        for interface in inventory(self.kernel):
            address = next(
                (
                    address
                    for address in interface.ipv6
                    if interface_file.is_same_address(text, address.ip)
                ),
                None,
            )
            if not address:
                continue
            if len(interface.ipv6) == 1:
                raise Failure(f"{text}: cannot remove last address from {interface.name}")
            self.kernel.remove_ipv6(interface.name, address.ip)
            self.edit_file(interface.name, interface_file.delete_from_lists, text)
            return
        raise Failure(f"{text}: not configured")

    # Files

    def file(self, name):
        """The file that is opened under a name: a symbolic link's target, or None."""
        file = self.world.files.get(name)
        return self.world.files.get(file.target) if file and file.target else file

    def remove_file(self, label):
        name, files = f"ifcfg-{label}", self.world.files
        error = self.world.scripts_error
        if name not in files:
            error = errno.ENOENT
        elif not error and files[name].is_directory():
            error = errno.EISDIR
        if error:
            self.last_error = error
        else:
            del files[name]

    def replace_file(self, label, text):
        """Returns 0 or the number of the error. The attributes are the old file's."""
        if self.world.scripts_error:
            return self.world.scripts_error
        name, files = f"ifcfg-{label}", self.world.files
        old = self.file(name)
        if not old:
            self.last_error = errno.ENOENT
            old = File("")
        new = File(text, old.mode, old.owner)
        if name in files and files[name].is_directory():
            files[free_temporary_name(files, name)] = new
            return errno.EISDIR
        files[name] = new
        return 0

    def edit_file(self, label, edit, *operands):
        """An IPv6 edit. If it fails, the file stays and the run continues."""
        file = self.file(f"ifcfg-{label}")
        if self.world.scripts_error or not file:
            self.last_error = self.world.scripts_error or errno.ENOENT
        elif file.is_directory():
            self.last_error = errno.EISDIR
        else:
            errors = [self.last_error]
            try:
                self.replace_file(label, edit(file.text, errors, *operands))
                self.last_error = errors[-1]
            except interface_file.CannotEdit as failure:
                self.last_error = errors[-1]
                self.report(f"{failure}\n{self.system_error()}")

    def system_error(self):
        error = self.last_error
        return f"System error {error}: {os.strerror(error)}\n" if error else ""


def label_of(name, suffix):
    label = f"{name}:{suffix}"
    require_short_label(label)
    return label


def require_short_label(label):
    if is_too_long(label):
        raise Failure(f"{label}: alias label too long.")


def is_too_long(label):
    return len(os.fsencode(label)) > LABEL_BYTES


def free_temporary_name(files, name):
    """Stands for six random characters."""
    number = next(number for number in range(len(files) + 1) if f"{name}.{number:06}" not in files)
    return f"{name}.{number:06}"


def is_temporary(name):
    return re.fullmatch(r"ifcfg-.*\.[A-Za-z0-9]{6}", name) is not None


def without_random(name):
    return name[:-6] + "XXXXXX" if is_temporary(name) else name


def run(world, arguments, operands_end_options=False):
    """Returns (exit status, Streams)."""
    it = Run(world)
    try:
        status = it.main(arguments, operands_end_options)
    except Failure as failure:
        it.streams.complain(f"{failure}\n")
        status = 1
    return status, it.streams
