# shellcheck shell=bash
# For tests in bash: counts what fails in $failures. The last line of a test is ((failures == 0)).
failures=0

failed() {
  printf 'FAILED: %s\n' "$1"
  failures=$((failures + 1))
}

# check RULE COMMAND ...: fails unless the command succeeds, and then shows its output.
check() {
  local output
  if output=$("${@:2}" 2>&1); then
    echo "ok: $1"
  else
    failed "$1"
    printf '  %s\n' "${output//$'\n'/$'\n  '}"
  fi
}

# Succeeds if both texts are equal; otherwise prints the difference.
same() { diff <(printf '%s\n' "$1") <(printf '%s\n' "$2"); }

# Runs a command where nobody can make a sandbox. The new user namespace has its own copy of this
# setting.
without_mount_namespaces() {
  unshare --user --map-root-user \
    sh -c 'echo 0 >/proc/sys/user/max_mnt_namespaces && exec "$@"' sh "$@"
}
