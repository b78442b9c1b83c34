# The figures of benchmarks/measure, with goals.csv read first:
#
#   awk -f report.awk [-v tables=1] goals.csv figures
#
# Prints the figures with two more columns, the goal and whether it is met; with
# tables=1 a table for each measure instead, of subjects by number of aliases.
BEGIN {
  FS = OFS = ","
}

FNR == NR {
  goal[$1, $2, $3, $4] = $5
  next
}

FNR == 1 && !tables {
  print "measure,aliases,family,subject,value,unit,goal,met"
}

{
  atMost = goal[$1, $2, $3, $4]
  met = atMost == "" ? "" : $5 + 0 <= atMost + 0 ? "yes" : "no"
  if (met != "") ++goalCount
  if (met == "yes") ++metCount
  if (!tables) print $0, atMost, met
  remember()
}

function remember(    row, column) {
  title = $1 ($6 == "" ? "" : ", " $6)
  if ($1 ~ /ratio$/) title = $1 ", addrtool to"
  row = $4 ($3 == "" ? "" : ", " $3)
  column = $2 == "" ? " " : $2
  if (!(title in columnCount)) titles[++titleCount] = title
  if (!((title, "column", column) in seen)) columns[title, ++columnCount[title]] = column
  if (!((title, "row", row) in seen)) rows[title, ++rowCount[title]] = row
  seen[title, "column", column] = seen[title, "row", row] = 1
  cell[title, row, column] = shorten($5) (met == "" ? "" : sprintf(" (%s <= %s)", met == "yes" ? "goal" : "MISSED", atMost))
}

function shorten(value) {
  return value + 0 >= 1000 ? sprintf("%d", value + 0.5) : sprintf("%.3g", value)
}

END {
  if (!tables) exit
  printf "\n%d of %d goals are met.\n", metCount, goalCount
  for (t = 1; t <= titleCount; ++t) printTable(titles[t])
}

function printTable(title,    r, c, line) {
  line = sprintf("| %-32s", title)
  for (c = 1; c <= columnCount[title]; ++c) line = line sprintf(" | %-22s", columns[title, c])
  print "\n" line " |"
  gsub(/[^|]/, "-", line)
  print line "-|"
  for (r = 1; r <= rowCount[title]; ++r) {
    line = sprintf("| %-32s", rows[title, r])
    for (c = 1; c <= columnCount[title]; ++c) {
      line = line sprintf(" | %-22s", cell[title, rows[title, r], columns[title, c]])
    }
    print line " |"
  }
}
