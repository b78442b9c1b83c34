#!/usr/bin/python3
"""Makes each system call of addrtool fail in turn, and kills addrtool at each of them.

Runs inside scripts/sandbox. A run without a fault lists the system calls of the program itself,
and shows the state afterwards. Then each call gets each fault, from the same start, and:

  - the program ends by itself, with a fitting status and message;
  - every file is the old or the new one, byte for byte, or a loss that a comment below explains;
  - the files change only if the running system does;
  - only a temporary file that ALLOWED_LEFTOVERS explains is left.

It runs the release, because another build makes other calls. --every N tries one fault in N.
"""

import collections
import pathlib
import re
import subprocess
import sys
import tempfile

import machine
from machine import alias_text, is_temporary, require

KINDS = ["EINTR", "EIO", "ENOMEM", "ENOSPC", "KILL"]
# execve and exit_group start and end every process. One mkstemp in 20 calls getrandom once more,
# because the C library drops a number that would favour some names.
NOT_INJECTED = {"execve", "exit_group", "getrandom"}
FATAL_IN_THE_C_LIBRARY = {"futex"}  # the C library aborts if it fails; the kernel never refuses it
FIRST_OWN_CALL = '"/etc/kel/kel.conf"'  # the C library makes the calls before it
# The temporary file stays if fdopen fails (fcntl, or its memory), the target cannot be opened, the
# rename fails, or the process is killed.
ALLOWED_LEFTOVERS = {"fcntl", "openat", "rename", "brk", "mmap"} | FATAL_IN_THE_C_LIBRARY

# The add replaces the stale file. With 198.51.100.1 the kernel drops the other alias of that
# subnet, so the delete must restore it.
SCENARIOS = [
    ["--list"],
    ["--add", "eth0", "192.0.2.13", "255.255.255.0"],
    ["--del", "198.51.100.1"],
    ["--add", "eth0", "2001:db8::3", "64"],
    ["--del", "2001:db8::1"],
]
ALIASES = {1: "192.0.2.11", 2: "192.0.2.12", 4: "198.51.100.1", 5: "198.51.100.2"}
ADDRESSES = ["192.0.2.1/24", *(f"{ip}/24 label eth0:{n}" for n, ip in ALIASES.items())]
ADDRESSES += ["2001:db8::1/64 nodad", "2001:db8::2/64 nodad"]
FILES = {f"ifcfg-eth0:{n}": alias_text(f"eth0:{n}", ip) for n, ip in ALIASES.items()}
FILES["ifcfg-eth0:3"] = "# left here by somebody\n"
FILES[
    "ifcfg-eth0"
] = """DEVICE=eth0
IPADDR=192.0.2.1
IPV6ADDR=2001:db8::1/64
IPV6ADDR_SECONDARIES=2001:db8::2/64
"""


class Run:
    """What one run from the same start printed and left."""

    def __init__(self, arguments, *strace_options):
        machine.set_addresses(ADDRESSES)
        machine.write_files(FILES)
        self.addresses_before = self.addresses()
        with tempfile.NamedTemporaryFile() as trace:
            command = ["strace", "-o", trace.name, *strace_options, "addrtool", *arguments]
            done = machine.run(command, timeout=20)
            self.trace = pathlib.Path(trace.name).read_text(errors="replace").splitlines()
        self.status, self.out, self.err = done.returncode, done.stdout, done.stderr
        self.files, self.addresses_after = machine.read_files(), self.addresses()

    @staticmethod
    def addresses():
        return sorted(re.findall(r"inet6? \S+", machine.shown_addresses()))

    def calls(self):
        """For each system call its name, its number among those of that name, and whether the C
        library makes it before the program starts."""
        seen, is_start = collections.Counter(), True
        for name, rest in re.findall(r"^(\w+)\((.*)", "\n".join(self.trace), re.MULTILINE):
            seen[name] += 1
            is_start = is_start and FIRST_OWN_CALL not in rest
            yield name, seen[name], is_start


def broken_rules(call, is_start, kind, run, unhurt):
    """Yields what does not hold after a run with a fault."""
    if kind != "KILL" and not any("(INJECTED)" in line for line in run.trace):
        yield "the fault was not injected"
    if kind == "KILL":
        if run.status not in (-9, 137):
            yield f"killed, but the status is {run.status}"
    elif run.status not in (0, 1):
        if not is_start and call not in FATAL_IN_THE_C_LIBRARY:  # else the C library ended it
            yield f"status {run.status}: {run.err!r}"
    elif run.status == 1:
        if not re.fullmatch(r"(?s).+\n", run.err):
            yield "status 1 without a message"
    else:
        if run.addresses_after != unhurt.addresses_after:
            yield f"status 0, but the addresses are {run.addresses_after}"
        # A line of the listing is lost if its write fails.
        if run.out != unhurt.out and call != "write":
            yield f"status 0, but the output is {run.out!r}"

    lasting = {name: text for name, text in run.files.items() if not is_temporary(name)}
    if run.files != lasting and kind != "KILL" and call not in ALLOWED_LEFTOVERS:
        yield f"left behind: {run.files.keys() - lasting.keys()}"
    for name, text in lasting.items():
        # A failed write is not detected (required), so a small file becomes empty.
        is_lost = text == "" and call == "write"
        if text not in (FILES.get(name), unhurt.files.get(name)) and not is_lost:
            yield f"{name} is neither the old nor the new: {text!r}"
    for name in (FILES.keys() & unhurt.files.keys()) - lasting.keys():
        yield f"{name} is gone"
    if lasting != FILES and run.addresses_after == run.addresses_before:
        yield "the files were changed, the running system was not"


def try_faults(arguments, every):
    """Tries the faults of a scenario. Returns how many."""
    unhurt = Run(arguments)
    require(unhurt.status == 0, f"{arguments} fails without any fault: {unhurt.err}")
    faults = [(*c, kind) for c in unhurt.calls() if c[0] not in NOT_INJECTED for kind in KINDS]
    leftovers = 0
    for call, ordinal, is_start, kind in faults[::every]:
        effect = "signal=KILL" if kind == "KILL" else f"error={kind}"
        where = f"{' '.join(arguments)}, {call} #{ordinal}, {kind}"
        try:
            run = Run(arguments, "-e", f"inject={call}:{effect}:when={ordinal}")
        except subprocess.TimeoutExpired:
            require(False, f"{where}: did not end")
            continue
        for rule in broken_rules(call, is_start, kind, run, unhurt):
            require(False, f"{where}: {rule}")
        leftovers += any(map(is_temporary, run.files))
    tried = len(faults[::every])
    print(f"{tried:5} faults tried, {leftovers:3} temporary files left: {' '.join(arguments)}")
    return tried


def main():
    options = machine.parse_options(__doc__, every=(1, 7))
    tried = sum(try_faults(arguments, options.every) for arguments in SCENARIOS)
    print(f"{tried} faults tried, {len(machine.failures)} failures")
    return 1 if machine.failures or not tried else 0


if __name__ == "__main__":
    sys.exit(main())
