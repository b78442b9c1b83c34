"""The steps of a walk: what each changes in the model, and how the worlds are compared.

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


def take(step, world, machine):
    if step[0] == "run":
        run(world, machine, *step[1:])
    elif makes_sense(step, world):
        answers = (answer_of(change, step, world), answer_of(machine.change, step))
        require_equal("the kernel's answer", *answers)
    compare(world, machine)


def makes_sense(step, world):
    """The kernel renames only a link that is down."""
    links = world.kernel.links
    match step:
        case "link", name, _:
            return name not in links
        case "rename", old, new:
            return old in links and new not in links and not links[old].is_up
        case ("up" | "address" | "ipv6"), name, *_:
            return name in links
        case "remove", name:
            return not world.scripts_error and name in world.files
        case ("file" | "symlink"), *_:
            return not world.scripts_error
    return True


def change(step, world):
    kernel = world.kernel
    match step:
        case "link", name, _:
            kernel.links[name] = Link()
        case "up", name, is_up:
            kernel.set_up(name, is_up)
        case "rename", old, new:
            kernel.rename(old, new)
        case "promote", is_on:
            kernel.promotes_secondaries = is_on
        case "address", name, ip, prefix, scope, label:
            kernel.add(kernel.links[name], Address4(ip, prefix, label, scope))
        case "ipv6", name, ip, prefix:
            kernel.insert_ipv6(name, Address6(ip, prefix))
        case "file", name, text, mode, owner:
            world.files[name] = File(text, mode, tuple(owner))
        case "symlink", name, target:
            world.files[name] = File(None, target=target)
        case "remove", name:
            del world.files[name]
        case "directory", state:
            world.scripts_error = ERRORS[state]
        case "suse", is_suse:
            world.is_suse = is_suse
        case "veinfo", text:
            world.veinfo = text
        case "configuration", is_there:
            world.has_configuration = is_there
        case _:
            raise ValueError(f"no such step: {step}")


def answer_of(action, *operands):
    try:
        action(*operands)
    except OSError as error:
        return error.strerror
    return "done"


def run(world, machine, arguments, is_merged, operands_end_options):
    status, expected = model.run(world, arguments, operands_end_options)
    real_status, output, error = machine.run(arguments, is_merged, operands_end_options)
    require_equal("the exit status", status, real_status)
    if is_merged:
        require_equal("both streams in one file", expected.merged, output)
    else:
        require_equal("standard output", expected.output, output)
        require_equal("standard error", expected.error, error)


def compare(world, machine):
    """The kernel's table, the state of the links, and all files."""
    addresses = machine.addresses()
    for name, link in world.kernel.links.items():
        ipv4, ipv6 = (list(map(dataclasses.astuple, each)) for each in (link.ipv4, link.ipv6))
        require_equal(f"the IPv4 addresses of {name}", ipv4, addresses[name][0])
        require_equal(f"the IPv6 addresses of {name}", ipv6, addresses[name][1])
        require_equal(f"whether {name} is up", link.is_up, machine.is_up(name))
    expected = [(without_random(name), file) for name, file in world.files.items()]
    files = machine.files()
    if sorted(expected, key=str) != files:
        missing = [file for file in expected if file not in files]
        require_equal("the files", missing, [file for file in files if file not in expected])
        raise Difference("the number of temporary files")


def require_equal(what, expected, actual):
    if expected != actual:
        raise Difference(f"{what}\n  model:   {expected!r}\n  machine: {actual!r}")
