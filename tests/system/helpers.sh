# shellcheck shell=bash
#
# What every transcript may use besides addrtool and the usual commands:
#
#   fresh                  a fresh machine: see scripts/sandbox. The first command of a transcript is
#                          "fresh || exit 80"
#   changed                what is different since the last fresh or changed: the kernel's addresses,
#                          and each file of the network scripts with its owner, mode and lines.
#                          It marks new lines with + and old ones with -
#   addresses              the kernel's addresses of global scope
#   files                  the files of the network scripts
#   interface NAME ADDRESS ...
#                          makes a second interface with an empty file of its own
#   streams COMMAND ...    runs COMMAND; marks its output with "1: " and its errors with "2: ", or both
#                          with "12: " if they are the same
#   each WORDS ...         runs addrtool once with each of the arguments, split as the shell would. Shows
#                          both streams and the status as streams does, but equal results only once,
#                          below the words that gave them, and the usage text as (usage)
#   record [SCRIPT]        from now on, /sbin/ifconfig prints its arguments in brackets and runs the
#                          SCRIPT of bash, which may end with a status
#   fail CALL ERROR ... addrtool ...
#                          runs addrtool; the system CALL returns the ERROR. CALL is an expression
#                          of strace, such as write or write:when=2. ERROR is a name or retval=N
#   calls SET addrtool ... runs addrtool and prints its system calls, without what is random. SET is
#                          an expression of strace, such as socket,sendto or %network
#
unset BASH_ENV # programs that a transcript starts do not read this file
cd /etc || return

readonly network_scripts=/etc/sysconfig/network-scripts
readonly no_line_feed=' (no line feed)' # follows a text, and is a line of its own if it has one

fresh() {
  "$ROOT/scripts/sandbox" --fresh </dev/null || return
  [[ -e /proc/.sandbox/first ]] || state >/proc/.sandbox/first
  cp /proc/.sandbox/first /proc/.sandbox/state
}

addresses() {
  ip -o address show scope global |
    sed -E 's/^[0-9]+: ([^ ]+) +inet6 ([^ ]+).*/\1 \2/; s/.* inet ([^ ]+) .* ([^ ]+)\\.*/\2 \1/'
}

files() {
  local name
  for name in "$network_scripts"/*; do
    [[ -e $name || -L $name ]] || continue
    stat -c "${name##*/} %u:%g %a" "$name"
    [[ ! -f $name || ! -s $name ]] ||
      cat -vT "$name" - <<<"$no_line_feed" | sed "/^$no_line_feed$/d; s|^|${name##*/}: |"
  done
}

state() {
  addresses
  files
}

changed() {
  state >/proc/.sandbox/new
  diff /proc/.sandbox/state /proc/.sandbox/new | sed -n 's/^>/+/p; s/^</-/p'
  mv /proc/.sandbox/new /proc/.sandbox/state
}

interface() {
  local address
  ip link add "$1" type veth && ip link set "$1" up && echo "DEVICE=$1" >"$network_scripts/ifcfg-$1"
  for address in "${@:2}"; do ip address add "$address" dev "$1"; done
}

streams() {
  local status=0 stream streams=(1 2)
  "$@" >/proc/.sandbox/1 2>/proc/.sandbox/2 </dev/null || status=$?
  if cmp -s /proc/.sandbox/1 /proc/.sandbox/2; then
    mv /proc/.sandbox/1 /proc/.sandbox/12
    streams=(12)
  fi
  for stream in "${streams[@]}"; do
    [[ -s /proc/.sandbox/$stream ]] || continue
    echo "$no_line_feed" >>"/proc/.sandbox/$stream"
    sed "/^$no_line_feed$/d; s/^/$stream: /" "/proc/.sandbox/$stream"
  done
  return "$status"
}

each() {
  local i differ='' results=()
  for ((i = 1; i <= $#; i++)); do
    results[i]=$(eval "streams addrtool ${!i}" || echo "[$?]")
    results[i]=${results[i]:-(nothing)}
    [[ ${results[i]} != *'2: Usage: '* ]] ||
      results[i]=$(sed '/^2: Usage: /,/this VE$/c\2: (usage)' <<<"${results[i]}")
    [[ ${results[i]} == "${results[1]}" ]] || differ=yes
  done
  for ((i = 1; i <= $#; i++)); do
    [[ ! $differ ]] || echo "addrtool ${!i}"
    [[ ${results[i]} == "${results[i + 1]-}" ]] || echo "${results[i]}"
  done
}

record() {
  printf '%s\n' '#!/bin/bash' "printf 'ifconfig'; ((\$# == 0)) || printf ' [%s]' \"\$@\"; echo" \
    "${1-}" >/proc/.sandbox/ifconfig
  chmod 755 /proc/.sandbox/ifconfig
  mount --bind /proc/.sandbox/ifconfig /sbin/ifconfig
}

# The leak sanitizer does not work in a traced program.
trace() { strace -qq -o /proc/.sandbox/calls -E ASAN_OPTIONS=detect_leaks=0 "$@" </dev/null; }

fail() {
  local expressions=() error status=0
  while [[ $1 != addrtool ]]; do
    error=$2
    [[ $error == *=* ]] || error=error=$error
    expressions+=(-e "inject=${1%%:*}:$error${1#"${1%%:*}"}")
    shift 2
  done
  trace "${expressions[@]}" "$@" || status=$?
  [[ $(</proc/.sandbox/calls) == *INJECTED* ]] || echo 'fail: no call failed'
  return "$status"
}

# With the paths of descriptors, the calls of coverage counters can be left out.
calls() {
  local status=0
  trace -f -y -e "trace=$1" -e signal=none "${@:2}" || status=$?
  sed -E '/\.gcda/d; s/([0-9D])<[^>"]*>/\1/g; s/^[0-9]+ +//; s/\.[A-Za-z0-9]{6}"/.XXXXXX"/g; s/0x[0-9a-f]{6,}/ADDRESS/g; s/_pid=[0-9]+/_pid=PID/' \
    /proc/.sandbox/calls
  return "$status"
}
