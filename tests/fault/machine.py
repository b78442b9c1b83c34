"""What the scripts of this folder share: options, the sandbox's addresses and files, failures."""

import argparse
import pathlib
import re
import subprocess
import sys

SCRIPTS = pathlib.Path("/etc/sysconfig/network-scripts")
failures = []  # what did not hold


def require_sandbox():
    """Ends the script outside a sandbox. Only the mounts of a sandbox have this procfs, and only
    its processes find themselves there."""
    if not pathlib.Path("/proc/.sandbox/proc/self").exists():
        sys.exit(
            f"{sys.argv[0]} changes addresses and system files, so it runs only in a sandbox:\n"
            f"  scripts/sandbox {sys.argv[0]} ..."
        )


def parse_options(description, **defaults):
    """Returns the numbers of the command line. A default is a pair: the second is for --quick."""
    parser = argparse.ArgumentParser(description=description.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="a small sample")
    for name, default in defaults.items():
        parser.add_argument(f"--{name}", type=int, help=f"default: {default[0]}, or {default[1]}")
    options = parser.parse_args()
    for name, default in defaults.items():
        if getattr(options, name) is None:
            setattr(options, name, default[options.quick])
    require_sandbox()
    return options


def require(holds, complaint):
    if not holds:
        failures.append(complaint)
        print(f"FAILED {complaint}")


def run(command, **options):
    """Runs the command to its end. Its streams are texts."""
    streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "universal_newlines": True}
    return subprocess.run(command, **streams, **options)


def ip(lines):
    """Runs the lines as commands of ip(8)."""
    run(["ip", "-batch", "-"], input="\n".join(lines) + "\n", check=True)


def set_addresses(addresses):
    """Gives eth0 exactly these addresses, each with the options of `ip address add`."""
    ip(["address flush dev eth0"] + [f"address add {address} dev eth0" for address in addresses])


def shown_addresses():
    """What ip(8) shows of the global addresses of eth0, each on one line."""
    return run("ip -o address show dev eth0 scope global".split(), check=True).stdout


def alias_text(label, address, netmask="255.255.255.0"):
    return f'DEVICE="{label}"\nIPADDR="{address}"\nNETMASK="{netmask}"\n'


def write_files(texts):
    """Leaves exactly these files. Each is renamed into place, so no reader sees a part of it."""
    for path in SCRIPTS.iterdir():
        if path.name not in texts:
            path.unlink()
    for name, text in texts.items():
        new = SCRIPTS.parent / "new"
        new.write_text(text)
        new.rename(SCRIPTS / name)


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
    return re.fullmatch(r"ifcfg-.*\.[A-Za-z0-9]{6}", name) is not None
