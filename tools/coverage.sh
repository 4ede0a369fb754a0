# shellcheck shell=bash
# The lines of the plug-in that the tests reach.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# Runs the tests in a separate build that counts executed lines. Coverage below the limit is a failure.
run_coverage() {
    local folder=$root/build/coverage profiles=$root/build/coverage/profiles limit=97 reached
    require build
    require checks
    rm -rf "$profiles"
    LLVM_PROFILE_FILE=$profiles/%p-%m.profraw run_tests coverage "$@"
    llvm-profdata-19 merge -sparse -o "$folder/tests.profdata" "$profiles"/*.profraw
    local measured=("$folder/Kestrel.fmplugin.so" -object "$folder/kestrel-tests"
        -instr-profile "$folder/tests.profdata" "$root/Sources")
    llvm-cov-19 report "${measured[@]}"
    llvm-cov-19 show "${measured[@]}" -show-branches=count -format=html -output-dir "$folder/report"
    reached=$(llvm-cov-19 report "${measured[@]}" | awk '$1 == "TOTAL" { sub(/%/, "", $10); print $10 }')
    say "lines reached: $reached %; line by line in build/coverage/report/index.html"
    awk -v reached="$reached" -v limit="$limit" 'BEGIN { exit !(reached >= limit) }' ||
        fail "that is less than $limit %"
    diff --label tests/unreached.txt --label "what was not reached" -U 0 \
        <(sed '/^#/d; /^$/d' "$root/tests/unreached.txt" | LC_ALL=C sort) <(unreached_lines "${measured[@]}") >&2 ||
        fail "a line that no test reaches is tested, removed, or has its reason in tests/unreached.txt"
}

# "file: line" for each line of Sources/ that did not run, except closing braces.
unreached_lines() {
    llvm-cov-19 show "$@" -show-instantiations=false |
        awk -F '|' -v folder="$root/Sources/" '
            /^\/.*:$/ { file = substr($0, length(folder) + 1); next }
            $2 ~ /^ *0$/ {
                sub(/^[^|]*\|[^|]*\| */, "")
                if ($0 !~ /^[})]*;?$/) print file " " $0
            }' | LC_ALL=C sort -u
}
