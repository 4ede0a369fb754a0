# shellcheck shell=bash
# Formatting and clang-tidy over the C++ files of the project's folders.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# sources ENDING FOLDER...: the files with that ending in folders of the project, separated by zero bytes.
sources() {
    local ending=$1
    shift
    find "${@/#/"$root/"}" -name "*.$ending" -print0
}

check_format() {
    local folders=(include Sources host tests bench fuzz tools)
    say "checking the formatting"
    { sources cpp "${folders[@]}" && sources h "${folders[@]}"; } | xargs -0 clang-format-19 --dry-run -Werror
}

# lint_one FOLDER FILE [OPTION]...: the findings of clang-tidy, without its count of suppressed ones. FOLDER has the
# extension and the database of flags.
lint_one() {
    local found
    found=$(clang-tidy-19 --quiet --load="$1/OwnCode.so" -p "$1" "${@:2}" 2>&1) || { printf '%s\n' "$found" && return 1; }
}

# A fault in a header and one in a source, which clang-tidy must find.
check_finding() {
    local folder=$1/host found
    mkdir -p "$folder"
    echo 'inline int* ofHeader() { return 0; }' >"$folder/Fault.h"
    printf '%s\n' '#include "Fault.h"' 'int* ofSource() { return 0; }' >"$folder/Fault.cpp"
    if found=$(lint_one "$1" "$folder/Fault.cpp" -- -std=c++20) || [ "$(grep -c use-nullptr <<<"$found")" != 2 ] ||
        grep -q 'load request ignored' <<<"$found"; then
        printf '%s\n' "$found" >&2
        fail "clang-tidy does not find the faults in build/sanitize/lint/host"
    fi
}

check_lint() {
    local folder=$root/build/sanitize/lint
    say "checking with clang-tidy"
    mkdir -p "$folder"
    # clang-tidy is built with libstdc++, so its extension is as well.
    clang++-19 -std=c++20 -O1 -Wall -Wextra -Wpedantic -Werror -fno-rtti -fPIC -shared \
        -isystem "$(llvm-config-19 --includedir)" -o "$folder/OwnCode.so" "$root/tools/OwnCode.cpp"
    check_finding "$folder"
    # The flags are those of the sanitizers' build. clang-tidy infers them for the few sources that this build lacks. A
    # precompiled header would make it read more than a source includes.
    sed -E 's/ -Winvalid-pch( -Xclang [^ ]+)+//' "$root/build/sanitize/compile_commands.json" \
        >"$folder/compile_commands.json"
    export -f lint_one
    sources cpp Sources host tests bench fuzz | xargs -0 -P "$jobs" -n 1 bash -c 'lint_one "$0" "$1"' "$folder" >&2
}
