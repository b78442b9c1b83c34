# shellcheck shell=bash
# For scripts that change addresses or system files: source it to end the script outside a sandbox.
# Only the mounts of a sandbox have this procfs, and only its processes find themselves there.
if [[ ! -e /proc/.sandbox/proc/self ]]; then
  printf '%s changes addresses and system files, so it runs only in a sandbox:\n  %s\n' \
    "$0" "scripts/sandbox $0 ..." >&2
  exit 1
fi
