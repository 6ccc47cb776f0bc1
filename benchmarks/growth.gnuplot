# Draws how the cost of each byte grows with a message, from a file with the benchmark's table:
#   gnuplot -c benchmarks/growth.gnuplot TABLE PICTURE.svg
set terminal svg size 860,620 font "sans-serif,13" background "white"
set output ARG2
set datafile separator "|"
set offsets 0.2, 0.2, 0, 0
set yrange [0:*]
set grid ytics
set key at graph 0.95, 0.82
header = "grep -E '^. (median|per byte) ' '".ARG1."'"
names = system(header." | tail -n 1 | cut -d '|' -f 3- | tr -d '|'")
rows(what) = "< grep -E '^. [0-9]+ MB ".what."' '".ARG1."'"
set multiplot layout 2,2
do for [index in "1 3"] {
  do for [what in "reply argument"] {
    set title (index == 1 ? "ns" : "bytes of memory")." per byte of ".what
    plot for [i = 1:words(names)] rows(what) \
      using (real(word(strcol(i + 2), int(index)))):xtic(word(strcol(2), 1)." MB") \
      title word(names, i) with linespoints linewidth 2 pointtype 7 pointsize 0.5
  }
}
