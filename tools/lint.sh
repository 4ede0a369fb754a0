# shellcheck shell=bash
# Formatting and clang-tidy over every C++ file.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# The C++ files with one of the given extensions, separated by zero bytes.
sources() {
    local extension
    for extension in "$@"; do
        find "$root"/{include,Sources,host,tests,bench,fuzz} -name "*.$extension" -print0
    done
}

check_format() {
    say "checking the formatting"
    sources cpp h | xargs -0 clang-format-19 --dry-run -Werror
}

# Prints the findings of clang-tidy, without its count of suppressed ones.
check_lint() {
    local database=$root/build/sanitize/lint
    say "checking with clang-tidy"
    # clang-tidy takes the flags from the sanitizers' build, which has every source. A precompiled header would make it
    # read more than a source includes.
    mkdir -p "$database"
    sed -E 's/ -Winvalid-pch( -Xclang [^ ]+)+//' "$root/build/sanitize/compile_commands.json" \
        >"$database/compile_commands.json"
    sources cpp | xargs -0 -P "$jobs" -n 1 bash -c '
        found=$(clang-tidy-19 --quiet -p "$0" "$1" 2>&1) || { printf "%s\n" "$found"; exit 1; }
    ' "$database" >&2
}
