# shellcheck shell=bash
#
# What the bash scripts of this folder share. Before a script sources this file, it
# puts its own absolute path, without symbolic links, into $script.
#
#   $root                    the top folder of the sources
#   usage                    prints the comment at the top of the script
#   report TEXT              prints TEXT on stderr, behind the script's name
#   fail TEXT                reports TEXT and exits with status 1
#   refuse TEXT              reports wrong use and exits with status 2
#   answer_help WORD ...     if the first WORD asks for help, prints it and exits
#   take_no_more WORD ...    refuses the first WORD, if there is one
#   build PRESET [OPTION ...]
#                            configures with the OPTIONs and builds, in the top folder.
#                            Waits until no other script builds the PRESET
#   run_logged NAME COMMAND ...
#                            runs COMMAND in $root; its output goes to
#                            build/NAME.log, and is shown only if it fails
#
: "${script:?}"
root=${script%/*/*}
readonly script root

usage() { sed -n '3,$ { /^#/!q; s/^#\( \|$\)//p }' "$script"; }

report() { printf 'scripts/%s: %s\n' "${script##*/}" "$1" >&2; }

fail() {
  report "$1"
  exit 1
}

refuse() {
  report "$1 (see scripts/${script##*/} --help)"
  exit 2
}

answer_help() {
  case ${1-} in
  -h | --help) usage && exit ;;
  esac
}

take_no_more() { (($# == 0)) || refuse "unknown word: $1"; }

build() {
  mkdir -p build && (flock 8 && cmake --preset "$@" && cmake --build --preset "$1") 8>"build/$1.lock"
}

run_logged() {
  local log=$root/build/$1.log
  mkdir -p "$root/build"
  (cd -- "$root" && "${@:2}") >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
}
