"""The sandbox that the fault tests change: its addresses, its files and the refusal to run elsewhere."""

import pathlib
import sys


def require_sandbox():
    """Ends the script outside a sandbox. Only the mounts of a sandbox have this procfs, and only
    its processes find themselves there."""
    if not pathlib.Path("/proc/.sandbox/proc/self").exists():
        sys.exit(
            f"{sys.argv[0]} changes addresses and system files, so it runs only in a sandbox:\n"
            f"  scripts/sandbox {sys.argv[0]} ..."
        )
