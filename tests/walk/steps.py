"""The steps of a walk: how each is applied to the model and to the machine.

A step is a list of its kind and its operands, so that a walk can be printed, shortened
and walked again. A step that makes no sense where it stands, as happens when a walk is
shortened, does nothing in either world.
"""

import dataclasses
import errno

import model
from kernel_model import Address4, Address6, Link
from model import File, without_random

ERRORS = {"writable": 0, "read-only": errno.EROFS, "missing": errno.ENOENT}


class Difference(Exception):
    """The machine is not as the model says."""


def apply(step, world, machine):
    kind, *operands = step
    APPLY[kind](world, machine, *operands)


def add_link(world, machine, name, kind):
    if name not in world.kernel.links:
        world.kernel.links[name] = Link()
        machine.add_link(name, kind)


def set_up(world, machine, name, is_up):
    if name in world.kernel.links:
        world.kernel.set_up(name, is_up)
        machine.set_up(name, is_up)


def rename(world, machine, old, new):
    """The kernel renames only a link that is down."""
    links = world.kernel.links
    if old in links and new not in links and not links[old].is_up:
        world.kernel.rename(old, new)
        machine.rename(old, new)


def promote(world, machine, is_on):
    world.kernel.promotes_secondaries = is_on
    machine.set_promotion(is_on)


def add_address(world, machine, name, ip, prefix, scope, label):
    if name not in world.kernel.links:
        return
    link, address = world.kernel.links[name], Address4(ip, prefix, label, scope)
    require_equal(
        "the kernel's answer",
        answer_of(lambda: world.kernel.add(link, address)),
        answer_of(lambda: machine.add_address(name, ip, prefix, scope, label)),
    )


def add_ipv6_address(world, machine, name, ip, prefix):
    if name in world.kernel.links:
        require_equal(
            "the kernel's answer",
            answer_of(lambda: world.kernel.insert_ipv6(name, Address6(ip, prefix))),
            answer_of(lambda: machine.add_address(name, ip, prefix, 0, None)),
        )


def answer_of(action):
    try:
        action()
    except OSError as error:
        return error.strerror
    return "done"


def put_file(world, machine, name, text, mode, owner):
    place_file(world, machine, name, File(text, mode, tuple(owner)))


def put_symbolic_link(world, machine, name, target):
    place_file(world, machine, name, File(None, target=target))


def place_file(world, machine, name, file):
    if not world.scripts_error:
        world.files[name] = file
        machine.put_file(name, file)


def remove_file(world, machine, name):
    if not world.scripts_error and name in world.files:
        del world.files[name]
        machine.remove_file(name)


def set_scripts(world, machine, state):
    world.scripts_error = ERRORS[state]
    machine.set_scripts_error(ERRORS[state])


def set_suse(world, machine, is_suse):
    world.is_suse = is_suse
    machine.set_suse(is_suse)


def set_veinfo(world, machine, text):
    world.veinfo = text
    machine.set_veinfo(text)


def set_configuration(world, machine, is_there):
    world.has_configuration = is_there
    machine.set_configuration(is_there)


def run(world, machine, arguments, is_merged, operands_end_options):
    status, streams = model.run(world, arguments, operands_end_options)
    real_status, output, error = machine.run(arguments, is_merged, operands_end_options)
    require_equal("the exit status", status, real_status)
    if is_merged:
        require_equal("both streams in one file", streams.merged, output)
    else:
        require_equal("standard output", streams.output, output)
        require_equal("standard error", streams.error, error)


APPLY = {
    "link": add_link,
    "up": set_up,
    "rename": rename,
    "promote": promote,
    "address": add_address,
    "ipv6": add_ipv6_address,
    "file": put_file,
    "symlink": put_symbolic_link,
    "remove": remove_file,
    "directory": set_scripts,
    "suse": set_suse,
    "veinfo": set_veinfo,
    "configuration": set_configuration,
    "run": run,
}


def compare(world, machine):
    """The kernel's table, the state of the links, and all files."""
    addresses = machine.addresses()
    for name, link in world.kernel.links.items():
        ipv4, ipv6 = addresses[name]
        require_equal(
            f"the IPv4 addresses of {name}",
            [dataclasses.astuple(address) for address in link.ipv4],
            ipv4,
        )
        require_equal(
            f"the IPv6 addresses of {name}",
            [dataclasses.astuple(address) for address in link.ipv6],
            ipv6,
        )
        require_equal(f"whether {name} is up", link.is_up, machine.is_up(name))
    expected = [(without_random(name), file) for name, file in world.files.items()]
    files = machine.files()
    if sorted(expected, key=str) != files:
        require_equal(
            "the files",
            [file for file in expected if file not in files],
            [file for file in files if file not in expected],
        )
        raise Difference("the number of temporary files")


def require_equal(what, expected, actual):
    if expected != actual:
        raise Difference(f"{what}\n  model:   {expected!r}\n  machine: {actual!r}")
