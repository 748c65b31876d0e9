# ratios.gnuplot: the picture of ratios.dat, as SVG and PNG. Bars start at 1, where both are equal.
# usage: gnuplot -e "folder='...'" ratios.gnuplot
data = folder . "/ratios.dat"
set encoding utf8
set datafile separator tab
stats data using 2 nooutput
rows = STATS_records

set title "Time of mensor divided by that of UDUNITS-2 on the same work" . \
    " (logarithmic; further left is faster)" offset -12
set logscale x
set xrange [0.005:20]
set yrange [-rows : 1]
set xtics ("0.01" 0.01, "0.02" 0.02, "0.05" 0.05, "0.1" 0.1, "0.2" 0.2, "0.5" 0.5, "1" 1, "2" 2, "5" 5, \
           "10" 10, "20" 20) nomirror
set ytics nomirror noenhanced scale 0
set grid xtics lc rgb "#dddddd"
set border 1
set key outside bottom center horizontal samplen 1
set style fill solid noborder
set arrow from 1, graph 0 to 1, graph 1 nohead lc rgb "#555555" lw 1.5 front

low(r) = r < 0.008 ? 0.008 : r
high(r) = r > 14 ? 14 : r
picture = "plot \
  data using ($2 <= 1 ? low($2) : NaN):(-$0):(low($2)):(1):(-$0-0.38):(-$0+0.38):ytic(1) \
    with boxxyerror lc rgb '#2a7f9e' title 'mensor faster', \
  data using ($2 > 1 ? high($2) : NaN):(-$0):(1):(high($2)):(-$0-0.38):(-$0+0.38) \
    with boxxyerror lc rgb '#d9903d' title 'UDUNITS-2 faster', \
  data using ($2 <= 1 ? low($2) : NaN):(-$0):(sprintf('%.2g', $2)) \
    with labels right offset -0.6,0 notitle, \
  data using ($2 > 1 ? high($2) : NaN):(-$0):(sprintf('%.2g', $2)) \
    with labels left offset 0.6,0 notitle, \
  data using 3:(-$0-0.42):(0):(0.84) with vectors nohead lw 3 lc rgb '#b02a30' title 'target'"

set terminal svg size 900, 140 + 20 * rows font "DejaVu Sans,11" background rgb "white"
set output folder . "/ratios.svg"
@picture
set terminal pngcairo size 900, 140 + 20 * rows font "DejaVu Sans,9" background rgb "white"
set output folder . "/ratios.png"
@picture
