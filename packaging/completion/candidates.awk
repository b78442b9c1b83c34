  # Reads `ifconfig -a`, a line "addresses:" and `addrtool --list`. Prints what can follow
  # --add (want=add), --del (want=del) and --qv-assigned-ip (want=check).
  $0 == "addresses:" { in_list = 1; next }
  !in_list && /^[^ ]/ { label = $1; sub(/:$/, "", label) }
  !in_list && $1 == "inet" && label ~ /:/ { sub(/^addr:/, "", $2); ++aliases[$2] }
  !in_list { next }
  want == "add" && !seen[$3]++ { print $3 }
  want == "check" && !seen[$1]++ { print $1 }
  $1 ~ /:/ { ++ipv6_count[$3] }
  !($1 in interface) { interface[$1] = $3; address[++total] = $1 }
  { ++listed[$1] }
  END {
    if (want != "del") exit
    for (i = 1; i <= total; ++i) {
      a = address[i]
      # An address that is listed more often than as an alias is a main address too.
      if (a ~ /:/ ? ipv6_count[interface[a]] > 1 : listed[a] == aliases[a]) print a
    }
  }
