"""The addresses and files of the sandbox that the fault tests change."""

import pathlib
import re
import subprocess
import sys

SCRIPTS = pathlib.Path("/etc/sysconfig/network-scripts")
TEMPORARY_FILE = re.compile(r"ifcfg-.*\.[A-Za-z0-9]{6}")


def require_sandbox():
    """Ends the script outside a sandbox. Only the mounts of a sandbox have this procfs, and only
    its processes find themselves there."""
    if not pathlib.Path("/proc/.sandbox/proc/self").exists():
        sys.exit(
            f"{sys.argv[0]} changes addresses and system files, so it runs only in a sandbox:\n"
            f"  scripts/sandbox {sys.argv[0]} ..."
        )


def ip(lines):
    """Runs the lines as commands of ip(8)."""
    subprocess.run(["ip", "-batch", "-"], input="\n".join(lines) + "\n", text=True, check=True)


def set_addresses(addresses):
    """Gives eth0 exactly these addresses, each with the options of `ip address add`."""
    ip(["address flush dev eth0", *(f"address add {address} dev eth0" for address in addresses)])


def shown_addresses():
    """The lines of ip(8) about the global addresses of eth0."""
    return subprocess.run(
        ["ip", "-o", "address", "show", "dev", "eth0", "scope", "global"],
        capture_output=True,
        text=True,
        check=True,
    ).stdout.splitlines()


def path_of(label):
    return SCRIPTS / f"ifcfg-{label}"


def alias_text(label, address, netmask="255.255.255.0"):
    return f'DEVICE="{label}"\nIPADDR="{address}"\nNETMASK="{netmask}"\n'


def list_line(addresses):
    """The line of the secondary IPv6 addresses; empty if there are none."""
    joined = " ".join(f"{address}/64" for address in addresses)
    return f'IPV6ADDR_SECONDARIES="{joined}"\n' if joined else ""


def remove_files():
    for path in SCRIPTS.iterdir():
        path.unlink()


def read_files():
    """The contents of every file by name. A file may vanish between its listing and its opening."""
    files = {}
    for path in SCRIPTS.iterdir():
        try:
            files[path.name] = path.read_text()
        except FileNotFoundError:
            pass
    return files


def is_temporary(name):
    return TEMPORARY_FILE.fullmatch(name) is not None
