# shellcheck shell=bash
# The benchmark results in docs/performance.md.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# Writes the table and the plot of this machine into docs/performance.md.
document_bench() {
    local folder=$root/build/dev/performance
    mkdir -p "$folder"
    KESTREL_GROWTH=$folder/growth.tsv "$root/build/dev/kestrel-bench" | tee "$folder/table.txt"
    gnuplot -e "data='$folder/growth.tsv'; picture='$root/docs/performance.svg'" "$root/bench/growth.gnuplot"
    {
        sed '/^<!-- results -->$/q' "$root/docs/performance.md"
        echo
        echo "Measured on $(date -u +%F): $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) processors," \
            "$(. /etc/os-release && echo "$PRETTY_NAME"), $(clang++-19 --version | head -n 1)."
        echo
        echo '```text'
        cat "$folder/table.txt"
        echo '```'
        echo
        echo '![Time over the size of the input, both on logarithmic scales](performance.svg)'
    } >"$folder/performance.md"
    cp "$folder/performance.md" "$root/docs/performance.md"
}
