"""A model of addrtool. It is written from the manual page and docs/changes.md, not from the source.

World is all that a run can see and change. run() changes it as one run of addrtool
does, and gives what that run should print and its exit status.
"""

import dataclasses
import errno
import os
import socket

import command_line
import interface_file
import kernel_model
from kernel_model import GLOBAL_RANK, GLOBAL_SCOPE, LABEL_BYTES, Kernel
from machine import SCRIPTS, alias_text, is_temporary

IFCONFIG = "/sbin/ifconfig"
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
        # Of several addresses with one label the first counts.
        aliases = {a.label.partition(":")[2]: a for a in reversed(listed) if ":" in a.label}
        ipv6 = [a for a in link.ipv6 if a.scope_rank() == GLOBAL_RANK and a.ip != "::2"]
        if mains or aliases or ipv6:
            found.append(Interface(name, mains, sorted(aliases.items()), ipv6))
    return found


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


class Run:
    """A run of addrtool, and what it prints: by stream, and merged for both streams in one file."""

    def __init__(self, world):
        self.world, self.kernel = world, world.kernel
        self.output = self.error = self.merged = ""
        self.last_error = 0 if world.has_configuration else errno.ENOENT  # of a system call

    def main(self, arguments, operands_end_options):
        """Returns the exit status."""
        line = command_line.parse(arguments, operands_end_options)
        self.complain(line.complaints)
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

    def print(self, text):
        self.output += text
        self.merged += text

    def complain(self, text):
        self.error += text
        self.merged += text

    def report(self, text):
        """A message of the support library goes to both streams."""
        self.complain(text)
        self.print(text)

    def usage(self):
        self.complain(USAGE)
        return 2

    def list(self, _):
        for interface in inventory(self.kernel):
            is_first = True
            for address in interface.mains + [address for _, address in interface.aliases]:
                netmask = netmask_of(address.prefix)
                self.print(f"{address.ip} {netmask} {interface.name} {int(is_first)}\n")
                is_first = False
            for address in interface.ipv6:
                self.print(f"{address.ip} {address.prefix} {interface.name} 0\n")

    def check_container(self, text):
        veinfo = self.world.veinfo
        if veinfo is None:
            self.last_error = errno.ENOENT
        is_found = veinfo is not None and any(text in line for line in veinfo.split("\n"))
        self.print(str(int(is_found)))

    def ifconfig(self, command, result):
        status, words = result
        self.complain(words)
        if status:
            raise Failure(f"{IFCONFIG} {command} exited with non-zero status {status}")

    def alias_up(self, label, text, prefix):
        result = kernel_model.ifconfig_alias_up(self.kernel, label, text, prefix or 32)
        self.ifconfig(f"'{label}' '{text}' netmask  '{netmask_of(prefix)}' up", result)

    # Adding

    def add(self, name, text, netmask):
        (self.add_ipv6 if ":" in text else self.add_ipv4)(name, text, netmask)

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
        lines = alias_text(label, text, netmask_of(prefix))
        if self.world.is_suse:
            lines += "STARTMODE='onboot'\n"
        else:
            self.last_error = errno.ENOENT
        error = self.replace_file(label, lines)
        if error:
            raise Failure(f"{SCRIPTS}/ifcfg-{label}: {os.strerror(error)}")

    def add_ipv6(self, name, text, length):
        prefix = interface_file.parse_prefix(length)
        if prefix is None:
            raise Failure(f"{length}: cannot convert to int")
        short_label(name)
        usage = self.world.ifconfig_usage
        result = kernel_model.ifconfig_add_ipv6(self.kernel, name, text, prefix, usage)
        self.ifconfig(f"{name} add {text}/{prefix}", result)
        self.edit_file(name, interface_file.add_to_list, text, prefix)

    # Deleting

    def delete(self, text):
        (self.delete_ipv6 if ":" in text else self.delete_ipv4)(text)

    def delete_ipv4(self, text):
        for interface in inventory(self.kernel):
            if any(address.ip == text for address in interface.mains):
                raise Failure(f"{text}: cannot delete main IP on interface")
            for suffix, address in interface.aliases:
                if address.ip == text:
                    return self.delete_alias(interface, suffix)
        raise Failure(f"{text}: not configured.")

    def delete_alias(self, before, deleted_suffix):
        label = short_label(f"{before.name}:{deleted_suffix}")
        self.ifconfig(f"'{label}' down", kernel_model.ifconfig_alias_down(self.kernel, label))
        self.remove_file(label)
        # Restores the aliases that vanished with it.
        after = [each for each in inventory(self.kernel) if each.name == before.name]
        left = {suffix for each in after for suffix, _ in each.aliases} | {deleted_suffix}
        for suffix, address in before.aliases:
            if suffix not in left:
                self.alias_up(short_label(f"{before.name}:{suffix}"), address.ip, address.prefix)

    def delete_ipv6(self, text):
        for interface in inventory(self.kernel):
            found = [a.ip for a in interface.ipv6 if interface_file.is_same_address(text, a.ip)]
            if found and len(interface.ipv6) == 1:
                raise Failure(f"{text}: cannot remove last address from {interface.name}")
            if found:
                self.kernel.remove_ipv6(interface.name, found[0])
                return self.edit_file(interface.name, interface_file.delete_from_lists, text)
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
            # The number stands for six random characters.
            names = (f"{name}.{number:06}" for number in range(len(files) + 1))
            files[next(free for free in names if free not in files)] = new
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
                error = (
                    f"System error {errors[-1]}: {os.strerror(errors[-1])}\n" if errors[-1] else ""
                )
                self.report(f"{failure}\n{error}")


def short_label(label):
    if is_too_long(label):
        raise Failure(f"{label}: alias label too long.")
    return label


def is_too_long(label):
    return len(os.fsencode(label)) > LABEL_BYTES


def without_random(name):
    return name[:-6] + "XXXXXX" if is_temporary(name) else name


def run(world, arguments, operands_end_options=False):
    """Returns (exit status, Run)."""
    it = Run(world)
    try:
        status = it.main(arguments, operands_end_options)
    except Failure as failure:
        it.complain(f"{failure}\n")
        status = 1
    return status, it
