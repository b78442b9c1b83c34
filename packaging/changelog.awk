# Turns CHANGELOG.md into the changelog of a package.
# -v format=deb or rpm, -v maintainer="NAME <ADDRESS>", -v name=PACKAGE

function day(date, pattern,    command, text) {
  command = "LC_ALL=C date -u -d " date " '+" pattern "'"
  command | getline text
  close(command)
  return text
}

# Prints a list entry in lines of at most 78 characters.
function print_entry(    words, count, i, line) {
  if (entry == "") return
  if (format == "rpm") gsub(/%/, "%%", entry) # rpm would expand macros
  count = split(section ": " entry, words, " ")
  line = format == "deb" ? "  *" : "-"
  for (i = 1; i <= count; ++i) {
    if (length(line " " words[i]) > 78) {
      print line
      line = format == "deb" ? "   " : " "
    }
    line = line " " words[i]
  }
  print line
  entry = ""
}

# Each release of a Debian changelog needs a time of its own, even if two were made on
# one day, so the last part of the version serves as the minute.
function end_release(    parts) {
  print_entry()
  if (version != "" && format == "deb") {
    split(version, parts, ".")
    printf "\n -- %s  %s 00:%02d:00 +0000\n", maintainer, day(date, "%a, %d %b %Y"), parts[3]
  }
}

/^## \[[0-9]/ {
  end_release()
  if (version != "") print ""
  version = substr($2, 2, length($2) - 2)
  date = $4
  if (format == "deb") printf "%s (%s) stable; urgency=medium\n\n", name, version
  else printf "* %s %s - %s-1\n", day(date, "%a %b %d %Y"), maintainer, version
  next
}
version == "" { next }
/^### / { print_entry(); section = $2; next }
/^- / { print_entry(); entry = substr($0, 3); next }
/^  / { entry = entry " " $0 }
END { end_release() }
