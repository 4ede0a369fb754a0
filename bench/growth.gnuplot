# data: a block a function (name, size, milliseconds); picture: the file to write.
set terminal svg noenhanced size 900,460 font "sans-serif,12" background "white"
set output picture
set datafile separator "\t"
set logscale xy
set format x "%.0f"
set xlabel "size of the input"
set ylabel "milliseconds"
set key outside right top
set grid
set linetype 5 linecolor "#8c564b" # the fifth is a yellow that hardly shows on white
stats data using 2 nooutput
plot for [block = 0:STATS_blocks - 2] data index block using 2:3 with linespoints linewidth 2 pointtype 7 pointsize 0.5 \
    title system(sprintf("awk 'BEGIN { RS = \"\\n\\n\\n\"; FS = \"\\t\" } NR == %d { sub(/, [0-9]+ /, \", \", $1); print $1 }' %s", block + 1, data))
