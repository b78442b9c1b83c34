# Completion of addrtool's command line for bash, with or without the
# bash-completion package.

# Prints the addresses that `$1 --del` takes: alias addresses, and the IPv6
# addresses of interfaces that have more than one.
_addrtool_deletable() {
  local aliases
  aliases=$(/sbin/ifconfig -a 2>/dev/null | awk '
    /^[^ \t]/ { label = $1; sub(/:$/, "", label) }
    $1 == "inet" && label ~ /:/ { sub(/^addr:/, "", $2); print $2 }')
  "$1" --list 2>/dev/null | awk -v aliases="${aliases//$'\n'/ }" '
    BEGIN { split(aliases, list, " "); for (i in list) is_alias[list[i]] = 1 }
    $1 ~ /:/ { ipv6[$3] = ipv6[$3] $1 "\n"; ++count[$3]; next }
    $1 in is_alias { print $1 }
    END { for (name in count) if (count[name] > 1) printf "%s", ipv6[name] }'
}

# Prints what can stand behind the option $2 of the program $1.
_addrtool_candidates() {
  case $2 in
  -a | --add) sed -n 's/^ *\([^ ]*\):.*/\1/p' /proc/net/dev ;;
  -d | --del) _addrtool_deletable "$1" ;;
  -v | --qv-assigned-ip) "$1" --list 2>/dev/null | cut -d ' ' -f 1 ;;
  *) printf '%s\n' --list --add --del --help --qv-assigned-ip ;;
  esac
}

_addrtool() {
  local line=${COMP_LINE:0:COMP_POINT} words current previous candidate
  # COMP_WORDS has addresses cut at their colons; these words are whole.
  read -ra words <<<"$line"
  [[ $line != *[[:blank:]] ]] || words+=("")
  current=${words[-1]} previous=${words[-2]}
  if [[ $current == --*=* ]]; then
    previous=${current%%=*} current=${current#*=}
  fi

  COMPREPLY=()
  while read -r candidate; do
    [[ $candidate != "$current"* ]] || COMPREPLY+=("$candidate")
  done < <(_addrtool_candidates "$1" "$previous")

  # Readline replaces only what stands behind the last colon.
  if [[ $current == *:* && $COMP_WORDBREAKS == *:* ]]; then
    COMPREPLY=("${COMPREPLY[@]#"${current%:*}:"}")
  fi
}

complete -F _addrtool addrtool
