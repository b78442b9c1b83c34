#!/usr/bin/env python3
"""Makes each system call of addrtool fail in turn, and kills addrtool at each of them.

Runs inside scripts/sandbox. For each scenario a run without a fault gives the
list of the program's own system calls and the two states, before and after;
then one run for each call and fault, from the same start. After each run:

  - the program has ended by itself (or by the kill), with a fitting status and
    message;
  - every configuration file is the old or the new one, byte for byte, or the
    loss is one of ACCEPTED_LOSSES;
  - the files changed only if the running system did;
  - no file is left but the temporary ones that ALLOWED_LEFTOVERS explains.

The program is the released one: another build has other calls of the C library.
"""

import argparse
import dataclasses
import pathlib
import re
import subprocess
import sys
import tempfile

from machine import (
    alias_text,
    is_temporary,
    path_of,
    read_files,
    remove_files,
    require_sandbox,
    set_addresses,
    shown_addresses,
)

ERRORS = ["EINTR", "EIO", "ENOMEM", "ENOSPC"]
KILL = "KILL"
TIMEOUT_SECONDS = 20

# The start and the end of every process. Their failure cannot be handled.
NOT_INJECTED = {"execve", "exit_group"}

# The C library aborts if these fail. The kernel never refuses them.
FATAL_IN_THE_C_LIBRARY = {"futex"}

# The first call of the program itself. The C library makes those before it.
FIRST_OWN_CALL = '"/etc/kel/kel.conf"'

INTERFACE_FILE = """DEVICE=eth0
ONBOOT=yes
IPADDR=192.0.2.1
NETMASK=255.255.255.0
IPV6INIT=yes
IPV6ADDR=2001:db8::1/64
IPV6ADDR_SECONDARIES=2001:db8::2/64
"""


# The add replaces the stale file. With 198.51.100.1 the kernel drops the other alias of that
# subnet, so the delete must restore it.
SCENARIOS = {
    "list": ["--list"],
    "add IPv4": ["--add", "eth0", "192.0.2.13", "255.255.255.0"],
    "delete IPv4": ["--del", "198.51.100.1"],
    "add IPv6": ["--add", "eth0", "2001:db8::3", "64"],
    "delete IPv6": ["--del", "2001:db8::1"],
}

ADDRESSES = [
    "192.0.2.1/24 label eth0",
    "192.0.2.11/24 label eth0:1",
    "192.0.2.12/24 label eth0:2",
    "198.51.100.1/24 label eth0:4",
    "198.51.100.2/24 label eth0:5",
    "2001:db8::1/64 nodad",
    "2001:db8::2/64 nodad",
]


def reset_machine():
    set_addresses(ADDRESSES)
    remove_files()
    path_of("eth0").write_text(INTERFACE_FILE)
    for number in (1, 2):
        path_of(f"eth0:{number}").write_text(alias_text(f"eth0:{number}", f"192.0.2.1{number}"))
    path_of("eth0:3").write_text("# left here by somebody\n")
    for number in (4, 5):
        path_of(f"eth0:{number}").write_text(
            alias_text(f"eth0:{number}", f"198.51.100.{number - 3}")
        )


def read_addresses():
    return {" ".join(line.split()[2:4]) for line in shown_addresses()}


@dataclasses.dataclass
class Run:
    status: int
    out: str
    err: str
    calls: list
    files: dict
    addresses: set


def parse_calls(trace):
    """The system calls in order: the name, its ordinal among its own kind, and whether the call
    belongs to the C library's start."""
    seen, calls, is_start = {}, [], True
    for line in trace.splitlines():
        match = re.match(r"(\w+)\(", line)
        if match:
            name = match.group(1)
            seen[name] = seen.get(name, 0) + 1
            is_start = is_start and FIRST_OWN_CALL not in line
            calls.append((name, seen[name], is_start))
    return calls


def run(scenario, injection=None):
    reset_machine()
    with tempfile.NamedTemporaryFile() as trace:
        command = ["strace", "-o", trace.name]
        if injection:
            command += ["-e", f"inject={injection}"]
        command += ["addrtool", *SCENARIOS[scenario]]
        done = subprocess.run(command, capture_output=True, text=True, timeout=TIMEOUT_SECONDS)
        calls = parse_calls(pathlib.Path(trace.name).read_text(errors="replace"))
    return Run(done.returncode, done.stdout, done.stderr, calls, read_files(), read_addresses())


@dataclasses.dataclass
class Fault:
    call: str
    ordinal: int
    is_start: bool
    kind: str

    def injection(self):
        effect = "signal=KILL" if self.kind == KILL else f"error={self.kind}"
        return f"{self.call}:{effect}:when={self.ordinal}"

    def __str__(self):
        return f"{self.call} #{self.ordinal}: {self.kind}"


# A failed write is not detected (required), so the file is replaced by what was written before: for
# these small files, nothing.
ACCEPTED_LOSSES = {"write": "the replaced file is empty: the failed write went unseen"}

# The temporary file stays behind if fdopen fails (fcntl, or its memory), the target cannot be
# opened, the rename fails, or the process is killed.
ALLOWED_LEFTOVERS = {"fcntl", "openat", "rename", "brk", "mmap"} | FATAL_IN_THE_C_LIBRARY


class Checker:
    def __init__(self, scenario, before, after):
        self.scenario, self.before, self.after = scenario, before, after
        self.losses = {}
        self.leftovers = 0

    def check(self, fault, run):
        """The complaints about one run."""
        complaints = list(self.check_status(fault, run)) + list(self.check_files(fault, run))
        if run.status == 0 and run.addresses != self.after.addresses:
            complaints.append(f"status 0, but the addresses are {sorted(run.addresses)}")
        return complaints

    def check_status(self, fault, run):
        if fault.kind == KILL:
            if run.status != -9 and run.status != 137:
                yield f"killed, but the status is {run.status}"
            return
        if run.status not in (0, 1):
            if fault.is_start or fault.call in FATAL_IN_THE_C_LIBRARY:
                return  # ended by the C library; the files are looked at all the same
            yield f"status {run.status}: {run.err!r}"
        if run.status == 1 and not re.fullmatch(r"(?s).+\n", run.err):
            yield "status 1 without a message"
        if run.status == 0 and run.out != self.after.out:
            if fault.call == "write":
                self.note_loss("list output", "a line whose write failed is missing")
            else:
                yield f"status 0, but the output is {run.out!r}"

    def check_files(self, fault, run):
        for name, contents in run.files.items():
            if is_temporary(name):
                self.leftovers += 1
                if fault.kind != KILL and fault.call not in ALLOWED_LEFTOVERS:
                    yield f"left behind: {name}"
            elif contents not in (self.before.get(name), self.after.files.get(name)):
                if contents == "" and fault.call in ACCEPTED_LOSSES:
                    self.note_loss(f"{name}", ACCEPTED_LOSSES[fault.call])
                else:
                    yield f"{name} is neither the old nor the new: {contents!r}"
        for name in self.before:
            if name not in run.files and name in self.after.files:
                yield f"{name} is gone"
        named = {n: c for n, c in run.files.items() if not is_temporary(n)}
        if named != self.before and run.addresses == self.start_addresses():
            yield "the files were changed, the running system was not"

    def start_addresses(self):
        return {("inet6 " if "::" in a else "inet ") + a.split()[0] for a in ADDRESSES}

    def note_loss(self, where, what):
        self.losses[(self.scenario, where, what)] = (
            self.losses.get((self.scenario, where, what), 0) + 1
        )


def faults_of(calls):
    for call, ordinal, is_start in calls:
        if call not in NOT_INJECTED:
            yield from (Fault(call, ordinal, is_start, kind) for kind in [*ERRORS, KILL])


def try_scenario(scenario, every):
    reset_machine()
    before = read_files()
    after = run(scenario)
    if after.status != 0:
        sys.exit(f"{scenario}: fails without any fault: {after.err}")
    checker = Checker(scenario, before, after)
    tried = failed = 0
    for number, fault in enumerate(faults_of(after.calls)):
        if number % every != 0:
            continue
        tried += 1
        try:
            complaints = checker.check(fault, run(scenario, fault.injection()))
        except subprocess.TimeoutExpired:
            complaints = ["did not end"]
        for complaint in complaints:
            print(f"FAILED {scenario}, {fault}: {complaint}")
        failed += bool(complaints)
    print(
        f"{scenario:12} {len(after.calls):4} calls {tried:5} faults tried "
        f"{tried - failed:5} survived {checker.leftovers:4} temporary files left"
    )
    for (_, where, what), count in sorted(checker.losses.items()):
        print(f"{'':12} accepted loss, {count} times: {where}: {what}")
    return tried, failed


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument(
        "--every", type=int, default=1, metavar="N", help="try only each N-th fault of a scenario"
    )
    every = parser.parse_args().every
    require_sandbox()
    results = [try_scenario(scenario, every) for scenario in SCENARIOS]
    tried, failed = (sum(column) for column in zip(*results))
    print(f"{tried} faults tried, {tried - failed} survived, {failed} not")
    return 1 if failed or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
