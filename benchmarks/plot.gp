# gnuplot -e "csv='...'; png='...'" plot.gp: CPU time against the number of aliases.
set terminal pngcairo size 1200,520 font ",11"
set output png
set datafile separator ","
set logscale xy
set xlabel "aliases on one interface"
set ylabel "CPU time, milliseconds"
set format y "%g"
set format x "%g"
set key top left
set grid
set linetype 1 linecolor rgb "#c0392b"
set linetype 2 linecolor rgb "#7f8c8d"
set linetype 3 linecolor rgb "#1f618d"
set linetype 4 linecolor rgb "#27ae60"
set multiplot layout 1,2

series(measure, family, subject) = sprintf("< awk -F, '$1 == \"%s CPU\" && $2 > 0 && $3 == \"%s\" && $4 == \"%s\"' %s", measure, family, subject, csv)

set title "listing (IPv4)"
plot for [subject in "'ifconfig -a' 'ip -o addr show' addrtool limit"] \
  series("list", "IPv4", subject) using 2:($5 / 1000) with linespoints linewidth 2 title subject

set title "one change"
plot for [subject in "addrtool 'bare command'"] for [change in "delete add"] \
  series(change, "", subject) using 2:($5 / 1000) with linespoints linewidth 2 \
  linetype (subject eq "addrtool" ? 3 : 1) dashtype 1 + (change eq "add") title sprintf("%s, %s", subject, change)
