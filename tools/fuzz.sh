# shellcheck shell=bash
# One fuzzer or all of them, each for a number of seconds.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# The names of the host's functions, as a fuzzer's dictionary.
host_functions() { sed -E 's/^[^\t]*\t([A-Za-z0-9]+).*/"\1 ( "/' "$root/host/calc/functions.tsv"; }

# fuzz_one NAME SECONDS: starts from the seeds in fuzz/corpus/NAME and the inputs of earlier runs, with the fuzzer's
# limits from fuzz/NAME.options. The output has the progress (cov: the edges reached) and every fault, but not every
# new input.
fuzz_one() {
    local name=$1 seconds=$2 folder=$root/build/sanitize/fuzz
    local found=$folder/corpus/$name failures=$folder/failures/$name
    local options=() arguments=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1
        -print_funcs=0 -artifact_prefix="$failures/" "$found")
    mkdir -p "$found" "$failures"
    if [ -d "$root/fuzz/corpus/$name" ]; then arguments+=("$root/fuzz/corpus/$name"); fi
    if [ -f "$root/fuzz/$name.dict" ]; then arguments+=(-dict="$root/fuzz/$name.dict"); fi
    if [ "$name" = calculation ] || [ "$name" = program ]; then
        host_functions >"$folder/functions-of-$name.dict"
        arguments+=(-dict="$folder/functions-of-$name.dict")
    fi
    # The last of two contradicting options counts.
    if [ -f "$root/fuzz/$name.options" ]; then mapfile -t options < <(grep '^-' "$root/fuzz/$name.options"); fi
    say "fuzzing $name for $seconds seconds"
    UBSAN_OPTIONS=print_stacktrace=1 "$root/build/sanitize/fuzz-$name" "${arguments[@]}" "${options[@]}" 2>&1 |
        LC_ALL=C sed -u -E -e '/^#[0-9]+\t(NEW|REDUCE|RELOAD) /d' -e '/^INFO: /d' -e '/^\t(NEW_FUNC|NEW_PC)|^###### |# Uses: /d' -e "s/^/$name: /" ||
        { say "$name failed; its input is in build/sanitize/fuzz/failures/$name"; return 1; }
}

# Runs as many fuzzers at a time as there are processors.
fuzz_all() {
    local seconds=$1
    export -f fuzz_one host_functions say
    export root
    find "$root/fuzz" -maxdepth 1 -name '*.cpp' -printf '%f\n' | sort | sed 's/\.cpp$//' |
        xargs -P "$jobs" -I NAME bash -euo pipefail -c 'fuzz_one NAME "$1"' fuzz "$seconds"
}

run_fuzz() {
    local name="" seconds=60
    while [ $# -gt 0 ]; do
        case $1 in
        --seconds)
            [[ ${2-} =~ ^[1-9][0-9]*$ ]] || wrong_usage "--seconds needs a number"
            seconds=$2
            shift 2
            ;;
        -*) wrong_usage "fuzz has no option $1" ;;
        *)
            [ -z "$name" ] || wrong_usage "fuzz takes one name"
            [ -f "$root/fuzz/$1.cpp" ] || wrong_usage "there is no fuzzer named $1"
            name=$1
            shift
            ;;
        esac
    done
    require checks
    build sanitize fuzzers
    symbolizer
    if [ -n "$name" ]; then fuzz_one "$name" "$seconds"; else fuzz_all "$seconds"; fi
}
