# shellcheck shell=bash
# Formatting and clang-tidy over every C++ file.
# `./kestrel` sources this file and calls its functions; they use those of `./kestrel`.

# sources EXTENSION FOLDER...: the files with that extension, separated by zero bytes.
sources() {
    local extension=$1
    shift
    (cd "$root" && find "$@" -name "*.$extension" -printf "$root/%p\0")
}

check_format() {
    local folders=(include Sources host tests bench fuzz tools)
    say "checking the formatting"
    { sources cpp "${folders[@]}" && sources h "${folders[@]}"; } | xargs -0 clang-format-19 --dry-run -Werror
}

# Prints the findings of clang-tidy, without its count of suppressed ones.
check_lint() {
    local folder=$root/build/sanitize/lint
    say "checking with clang-tidy"
    mkdir -p "$folder"
    # An extension is built with the compiler's own standard library.
    clang++-19 -std=c++20 -O1 -Wall -Wextra -Wpedantic -Werror -fno-rtti -fPIC -shared \
        -isystem "$(llvm-config-19 --includedir)" -o "$folder/OwnCode.so" "$root/tools/OwnCode.cpp"
    # clang-tidy takes the flags from the sanitizers' build, which has every source. A precompiled header would make it
    # read more than a source includes.
    sed -E 's/ -Winvalid-pch( -Xclang [^ ]+)+//' "$root/build/sanitize/compile_commands.json" \
        >"$folder/compile_commands.json"
    sources cpp Sources host tests bench fuzz | xargs -0 -P "$jobs" -n 1 bash -c '
        found=$(clang-tidy-19 --quiet --load="$0/OwnCode.so" -p "$0" "$1" 2>&1) || { printf "%s\n" "$found"; exit 1; }
    ' "$folder" >&2
}
