#!/usr/bin/python3
"""Makes each system call of addrtool fail in turn, and kills addrtool at each of them.

Runs inside scripts/sandbox. For each scenario a run without a fault gives the
list of the program's own system calls and the two states, before and after;
then one run for each call and fault, from the same start. After each run:

  - the program has ended by itself (or by the kill), with a fitting status and
    message;
  - every configuration file is the old or the new one, byte for byte, or the
    loss is one of those that the checks below note;
  - the files changed only if the running system did;
  - no file is left but the temporary ones that ALLOWED_LEFTOVERS explains.

The program is the released one: another build has other calls of the C library.
--every N tries only each N-th fault of a scenario.
"""

import collections
import pathlib
import re
import subprocess
import sys
import tempfile
import typing

import machine
from machine import alias_text, failures, is_temporary, read_files, shown_addresses

ERRORS = ["EINTR", "EIO", "ENOMEM", "ENOSPC"]
KILL = "KILL"
TIMEOUT_SECONDS = 20

# The start and the end of every process. Their failure cannot be handled.
NOT_INJECTED = {"execve", "exit_group"}

# The C library aborts if these fail. The kernel never refuses them.
FATAL_IN_THE_C_LIBRARY = {"futex"}

# The temporary file stays behind if fdopen fails (fcntl, or its memory), the target cannot be
# opened, the rename fails, or the process is killed.
ALLOWED_LEFTOVERS = {"fcntl", "openat", "rename", "brk", "mmap"} | FATAL_IN_THE_C_LIBRARY

# The first call of the program itself. The C library makes those before it.
FIRST_OWN_CALL = '"/etc/kel/kel.conf"'

# The add replaces the stale file. With 198.51.100.1 the kernel drops the other alias of that
# subnet, so the delete must restore it.
SCENARIOS = {
    "list": ["--list"],
    "add IPv4": ["--add", "eth0", "192.0.2.13", "255.255.255.0"],
    "delete IPv4": ["--del", "198.51.100.1"],
    "add IPv6": ["--add", "eth0", "2001:db8::3", "64"],
    "delete IPv6": ["--del", "2001:db8::1"],
}
ALIASES = {1: "192.0.2.11", 2: "192.0.2.12", 4: "198.51.100.1", 5: "198.51.100.2"}
ADDRESSES = ["192.0.2.1/24", *(f"{ip}/24 label eth0:{n}" for n, ip in ALIASES.items())]
ADDRESSES += ["2001:db8::1/64 nodad", "2001:db8::2/64 nodad"]
INTERFACE_FILE = """DEVICE=eth0
ONBOOT=yes
IPADDR=192.0.2.1
NETMASK=255.255.255.0
IPV6INIT=yes
IPV6ADDR=2001:db8::1/64
IPV6ADDR_SECONDARIES=2001:db8::2/64
"""
START = {f"inet{'6' * ('::' in address)} {address.split()[0]}" for address in ADDRESSES}
FILES = {"ifcfg-eth0": INTERFACE_FILE, "ifcfg-eth0:3": "# left here by somebody\n"}
FILES |= {f"ifcfg-eth0:{n}": alias_text(f"eth0:{n}", ip) for n, ip in ALIASES.items()}


class Fault(typing.NamedTuple):
    call: str
    ordinal: int  # among the calls of that name
    is_start: bool  # whether the C library makes the call before the program starts
    kind: str

    def injection(self):
        effect = "signal=KILL" if self.kind == KILL else f"error={self.kind}"
        return f"inject={self.call}:{effect}:when={self.ordinal}"


class Run:
    """The outcome of one run from the same start: what it printed and what it left."""

    def __init__(self, arguments, *strace_options):
        machine.set_addresses(ADDRESSES)
        machine.write_files(FILES)
        with tempfile.NamedTemporaryFile() as trace:
            command = ["strace", "-o", trace.name, *strace_options, "addrtool", *arguments]
            done = subprocess.run(command, capture_output=True, text=True, timeout=TIMEOUT_SECONDS)
            self.trace = pathlib.Path(trace.name).read_text(errors="replace").splitlines()
        self.status, self.out, self.err = done.returncode, done.stdout, done.stderr
        self.files = read_files()
        self.running = set(re.findall(r"inet6? \S+", shown_addresses()))

    def calls(self):
        """The system calls in order, as the fields that a Fault starts with."""
        seen, is_start = collections.Counter(), True
        for line in self.trace:
            if match := re.match(r"(\w+)\(", line):
                seen[match[1]] += 1
                is_start = is_start and FIRST_OWN_CALL not in line
                yield match[1], seen[match[1]], is_start


class Scenario:
    def __init__(self, name):
        self.name, self.arguments = name, SCENARIOS[name]
        self.after = Run(self.arguments)
        if self.after.status != 0:
            sys.exit(f"{name}: fails without any fault: {self.after.err}")
        self.losses, self.leftovers = collections.Counter(), 0

    def require(self, holds, fault, complaint):
        where = f"{self.name}, {fault.call} #{fault.ordinal}: {fault.kind}"
        machine.require(holds, f"{where}: {complaint}")

    def check_status(self, fault, run):
        if fault.kind == KILL:
            self.require(run.status in (-9, 137), fault, f"killed, but the status is {run.status}")
        elif run.status not in (0, 1):
            # Ended by the C library. The files are looked at all the same.
            is_fatal = fault.is_start or fault.call in FATAL_IN_THE_C_LIBRARY
            self.require(is_fatal, fault, f"status {run.status}: {run.err!r}")
        elif run.status == 1:
            self.require(re.fullmatch(r"(?s).+\n", run.err), fault, "status 1 without a message")
        else:
            is_done = run.running == self.after.running
            self.require(is_done, fault, f"status 0, but the addresses are {sorted(run.running)}")
            if run.out != self.after.out and fault.call == "write":
                self.losses["list output: a line whose write failed is missing"] += 1
            elif run.out != self.after.out:
                self.require(False, fault, f"status 0, but the output is {run.out!r}")

    def check_files(self, fault, run):
        lasting = {name: text for name, text in run.files.items() if not is_temporary(name)}
        for name in run.files.keys() - lasting.keys():
            self.leftovers += 1
            is_allowed = fault.kind == KILL or fault.call in ALLOWED_LEFTOVERS
            self.require(is_allowed, fault, f"left behind: {name}")
        for name, text in lasting.items():
            is_whole = text in (FILES.get(name), self.after.files.get(name))
            if not is_whole and text == "" and fault.call == "write":
                # A failed write is not detected (required), so the file is replaced by what was
                # written before: for these small files, nothing.
                loss = f"{name}: the replaced file is empty: the failed write went unseen"
                self.losses[loss] += 1
            else:
                self.require(is_whole, fault, f"{name} is neither the old nor the new: {text!r}")
        for name in (FILES.keys() & self.after.files.keys()) - lasting.keys():
            self.require(False, fault, f"{name} is gone")
        is_followed = lasting == FILES or run.running != START
        self.require(is_followed, fault, "the files were changed, the running system was not")

    def try_fault(self, fault):
        """Returns whether the program survives it."""
        failed_before = len(failures)
        try:
            run = Run(self.arguments, "-e", fault.injection())
            self.check_status(fault, run)
            self.check_files(fault, run)
        except subprocess.TimeoutExpired:
            self.require(False, fault, "did not end")
        return len(failures) == failed_before

    def try_faults(self, every):
        """Returns the numbers of the tried and of the survived faults."""
        calls, kinds = list(self.after.calls()), [*ERRORS, KILL]
        faults = [Fault(*c, kind) for c in calls if c[0] not in NOT_INJECTED for kind in kinds]
        survived = [self.try_fault(fault) for fault in faults[::every]]
        print(
            f"{self.name:12} {len(calls):4} calls {len(survived):5} faults tried "
            f"{sum(survived):5} survived {self.leftovers:4} temporary files left"
        )
        for loss, count in sorted(self.losses.items()):
            print(f"{'':12} accepted loss, {count} times: {loss}")
        return len(survived), sum(survived)


def main():
    options = machine.parse_options(__doc__, every=1)
    results = [Scenario(name).try_faults(options.every) for name in SCENARIOS]
    tried, survived = map(sum, zip(*results))
    print(f"{tried} faults tried, {survived} survived, {tried - survived} not")
    return 1 if failures or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
