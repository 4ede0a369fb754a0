#!/usr/bin/env bash
# usage: check.sh [--fault SOURCE [--export FUNCTION]]
#        check.sh --lay-out FOLDER
#        check.sh --read FOLDER
#
# Builds the plug-in's bundle for an iPhone, without a Mac, and inspects it. Prints a line for each check, then the
# symbols that the plug-in imports and its size. The exit status is 0 when all checks passed, 1 when one failed, and
# 2 when they could not run. KESTREL_HOST and KESTREL_PLUGIN are the development host's program and the plug-in that
# it loads, which give the version.
#
# The options are for tests of the checks. --fault adds a faulty source to the plug-in, and --export exports a
# function of it. --lay-out copies the inputs of the checks into FOLDER and checks nothing. --read builds nothing and
# checks such a FOLDER, in which a test has changed something.

set -euo pipefail

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
root=$(readlink -f "$here/../../..")
build=$root/build/ios-check
cache=${XDG_CACHE_HOME:-$HOME/.cache}/kestrel
entry_point=FMExternCallProc
one_header=Sources/platform/BothRuntimes.h
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

say() { echo "check-ios: $*" >&2; }

fail() {
    say "$*"
    exit 2
}

# --- Building ---------------------------------------------------------------------------------------

# configure SOURCE EXPORT
configure() {
    local sdk
    sdk=$("$here/make-sdk.sh" "$cache")
    (cd "$root" && cmake --preset ios-check --fresh -DKESTREL_STAND_IN_SDK="$sdk" \
        -DKESTREL_FAULT_SOURCE="$1" -DKESTREL_FAULT_EXPORT="$2") >"$work/configure.log" 2>&1 || {
        cat "$work/configure.log" >&2
        fail "the build for the target could not be configured"
    }
}

# Builds the plug-in and prints each error of compilers and linker, with the file's path from the root.
build_errors() {
    ninja -C "$build" -k 0 -j "$(nproc)" >"$work/build.log" 2>&1 && return
    sed -n -e "s#$root/##g" -e 's#^\(\.\./\)*##' -e '/error: /p' "$work/build.log" | awk '!seen[$0]++ { found = 1; print }
        END { if (!found) print "the build failed" }'
}

# --- Collecting the inputs of the checks ------------------------------------------------------------

# The library's object files, separated by zero bytes. The folder may also hold files of earlier builds.
objects() {
    sed -nE "/^# Sections/q; s#^\\[ *[1-9][0-9]*\\] #$build/#p" "$build/Kestrel.map" | tr '\n' '\0'
}

# The references of the object files are stored as text, because reading them takes most of the checks' time.
lay_out() {
    local file
    mkdir -p "$1"
    cp -r "$build/Kestrel.fmplugin" "$build/Kestrel.map" "$root/Sources" "$1"
    ninja -C "$build" -t commands KestrelPlugIn >"$1/commands"
    objects | xargs -0 llvm-nm-19 --undefined-only --format=just-symbols | plain_names | sort -u \
        >"$1/undefined-in-objects"
    objects | while IFS= read -r -d '' file; do references "$file"; done >"$1/graph"
}

# Turns symbols into names as written in C or C++.
plain_names() { sed 's/^_//' | llvm-cxxfilt-19 -n; }

# The functions of an object file with their references, in the format of initialisers.awk.
references() {
    local file=$1 marks=$work/marks
    llvm-nm-19 --defined-only "$file" | awk -v file="$file" -v marks="$marks" '
        $3 ~ /^(ltmp|lCPI|L|l_)/ { next }
        {
            address = $1
            name = $0
            sub(/^[^ ]+ . /, "", name)
            print address, "function", file, name > marks
        }
        $2 ~ /[a-z]/ { print "own", file, name }
        name ~ /^\+\[.* load\]$/ { print "starts", file, name }'
    llvm-objdump-19 --reloc --section=__mod_init_func "$file" 2>/dev/null |
        awk -v file="$file" '$2 ~ /^ARM64_RELOC/ { print "starts", file, $3 }'
    # Initialisers have a separate code section; data between the sections does no harm.
    llvm-objdump-19 --disassemble --reloc "$file" | awk -v file="$file" '
        match($0, /:[ \t]+ARM64_RELOC_[A-Z0-9_]+[ \t]+/) {
            address = $1
            sub(/:$/, "", address)
            print address, "refers", file, substr($0, RSTART + RLENGTH)
        }' >>"$marks"
    # The order is by address, and a function comes before its references.
    LC_ALL=C sort -k 1,1 -k 2,2 "$marks" | cut -d ' ' -f 2-
}

# --- Reading ----------------------------------------------------------------------------------------

# undefined FILE...
undefined() { llvm-nm-19 --undefined-only --format=just-symbols "$@" | awk 'NF && !/:$/' | sort -u | plain_names; }

# read_plist FILE: converts the list to XML in $work/plist. plistutil reports no failure in its exit status.
read_plist() {
    rm -f "$work/list" "$work/plist"
    plistutil -f bin -i "$1" -o "$work/list" && plistutil -f xml -i "$work/list" -o "$work/plist" &&
        [ -s "$work/plist" ]
} >/dev/null 2>&1

# The values of a key in a property list: the strings of an array, or the single string.
plist_values() {
    if read_plist "$1"; then
        awk -v key="<key>$2</key>" '
            index($0, key) { on = 1; next }
            on && /<array>/ { within = 1 }
            on && /<string>/ { gsub(/^[ \t]*<string>|<\/string>$/, ""); print }
            on && (/<\/array>/ || !within) { on = within = 0 }' "$work/plist"
    fi
}

# states FILE KEY VALUE: passes if the property list has the value, an empty element, for the key.
states() { read_plist "$1" && grep -A 1 -F "<key>$2</key>" "$work/plist" | grep -qE "^[[:space:]]*$3\$"; }

# Reads the properties of the library that several checks use.
read_library() {
    undefined "$library" >"$work/undefined"
    grep -rhoE '\bFM_[A-Za-z0-9_]+' "$root/include/FMWrapper" | sort -u >"$work/sdk-functions"
    awk -v sdk="$work/sdk-functions" -f "$here/owners.awk" "$here/symbols.txt" "$work/undefined" >"$work/owners"
    llvm-nm-19 --format=just-symbols "$library" | plain_names >"$work/symbols"
    llvm-objdump-19 --macho --private-headers "$library" >"$work/headers"
    awk '$1 == "sectname" { section = $2 } $1 == "segname" && section { print $2 "," section; section = "" }' \
        "$work/headers" >"$work/sections"
}

# --- Checks: each prints a line for every finding ----------------------------------------------------

check_sources() {
    local source
    (cd "$inputs" && find Sources -name '*.cpp' -o -name '*.mm') | sort | while read -r source; do
        source=${source#Sources/}
        grep -qE "\] Sources/CMakeFiles/[A-Za-z]+\.dir/$source\.o$" "$inputs/Kestrel.map" ||
            echo "Sources/$source is not part of the library"
    done
}

# Only one header may count references by message, and Objective-C++ may have no other conditional code.
check_ownership() {
    local message='(^|[])[:space:]])(retain|release|autorelease|dealloc)[[:space:]]*\]'
    local condition='^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif|elifdef|elifndef)([^[:alnum:]_]|$)'
    grep -E ' -c .*/Sources/.*\.mm$' "$inputs/commands" |
        grep -v -- ' -fobjc-arc ' | sed 's#.* -c .*/Sources/\(.*\)#Sources/\1 is compiled without ARC#'
    (
        cd "$inputs"
        grep -rnE "objc_arc|__OBJC__|GNUSTEP|$message" Sources
        grep -rnE --include='*.mm' "$condition" Sources
        grep -nE "$condition" Sources/platform/*.h
    ) | sort -u | grep -v "^$one_header:" | sed "s#^\([^:]*:[0-9]*\):.*#\1: belongs into $one_header#"
}

# expect WHAT PATTERN: reports WHAT unless a line of the library's headers matches.
expect() { grep -qE "$2" "$work/headers" || echo "it is not $1"; }

check_format() {
    local id
    expect "an arm64 dynamic library" '^MH_MAGIC_64 +ARM64 +ALL +[0-9x]+ +DYLIB '
    expect "for iOS devices" '^ *platform (2|IOS|ios)$'
    expect "for iOS 16.0 and later" '^ *minos 16\.0$'
    id=$(awk '$1 == "cmd" { on = $2 == "LC_ID_DYLIB" } on && $1 == "name" { print $2 }' "$work/headers")
    [ "$id" = @rpath/Kestrel.fmplugin/Kestrel ] || echo "its install name is $id"
}

check_libraries() {
    local allowed='/usr/lib/libSystem.B.dylib /usr/lib/libc++.1.dylib /usr/lib/libobjc.A.dylib
        /System/Library/Frameworks/Foundation.framework/Foundation
        /System/Library/Frameworks/CoreFoundation.framework/CoreFoundation'
    awk -v allowed="$allowed" 'BEGIN { for (n = split(allowed, names); n; n--) known[names[n]] = 1 }
        $1 == "cmd" { on = $2 ~ /^LC_LOAD.*DYLIB$/ }
        on && $1 == "name" && !($2 in known) { print "it is linked with " $2 }' "$work/headers"
}

check_exports() {
    llvm-nm-19 --extern-only --defined-only --format=just-symbols "$library" | plain_names >"$work/exports"
    grep -vxF "$entry_point" "$work/exports" | sed 's/$/ is exported as well/'
    grep -qxF "$entry_point" "$work/exports" || echo "$entry_point is not exported"
}

check_host_functions() {
    awk -F '\t' '$1 == "-" && $2 ~ /^FM_/ { print $2 " is no function of the host SDK" }' "$work/owners"
}

check_system_functions() {
    awk -F '\t' '$1 == "-" && $2 !~ /^FM_/ {
        print $2 " is not on the list of what iOS 16.0 has: do without, or look it up and add it, as " list " says" }' \
        list=packaging/ios/check/symbols.txt "$work/owners"
}

check_classes() {
    local class
    sed -nE 's/^@interface ([A-Za-z]+) *:.*/\1/p' "$inputs"/Sources/platform/*.h | while read -r class; do
        grep -qxF "OBJC_CLASS_\$_$class" "$work/symbols" || echo "the class $class is missing"
    done
}

check_foreign_matter() {
    grep -E '(^|[^A-Za-z0-9_:])host::' "$work/symbols" | sed 's/$/ belongs to the development host/'
    grep -E '^_*(GS[A-Z]|gs_|objc_msg_lookup|objc_get_class|objc_exec_class|objc_class_name)|NSConstantString' \
        "$work/symbols" | sed 's/$/ belongs to GNUstep/'
    grep -vE '^__(TEXT|DATA|DATA_CONST|LINKEDIT),__' "$work/sections" | sed 's/$/ is no section of Apple'\''s/'
    llvm-strings-19 "$library" | grep -F -e "$root/" -e "$cache/" | sed 's/^/a path of this machine: /'
}

check_initialisers() {
    grep -q '^function ' "$inputs/graph" || echo "the object files could not be read"
    awk -f "$here/initialisers.awk" "$inputs/graph" | llvm-cxxfilt-19 -_ | sed 's/^_*/before the host is ready: /'
}

check_bundle() {
    local name expected actual
    for name in Kestrel Info.plist PrivacyInfo.xcprivacy; do
        [ -f "$bundle/$name" ] || echo "$name is missing"
    done
    for name in Info.plist PrivacyInfo.xcprivacy; do
        read_plist "$bundle/$name" || echo "$name is no property list"
    done
    while read -r name expected; do
        actual=$(plist_values "$bundle/Info.plist" "$name")
        [ "$actual" = "$expected" ] || echo "$name is \"$actual\" and not $expected"
    done <<'LIST'
CFBundleExecutable Kestrel
CFBundleIdentifier com.vex.kestrel
CFBundlePackageType FMXT
CFBundleSignature KSTR
CFBundleSupportedPlatforms iPhoneOS
MinimumOSVersion 16.0
LIST
}

check_version() {
    local key version answer
    answer=$("$KESTREL_HOST" eval 'Kestrel_Version ( "short" )')
    for key in CFBundleVersion CFBundleShortVersionString; do
        version=$(plist_values "$bundle/Info.plist" "$key")
        [ "$version" = "$answer" ] || echo "$key is \"$version\", Kestrel_Version answers \"$answer\""
    done
}

# used_categories NAMES: the categories of privacy.txt under which one of NAMES is listed.
used_categories() {
    awk 'FNR == NR { used[$0] = 1; next }
        /^#/ || !NF { next }
        /^\[/ { category = substr($0, 2, length($0) - 2); next }
        $0 in used { print category " " $0 }' "$1" "$here/privacy.txt"
}

check_privacy() {
    local category name empty manifest=$bundle/PrivacyInfo.xcprivacy
    # The linker drops unreachable code, but the manifest must cover the sources as well.
    { cat "$inputs/undefined-in-objects"; llvm-strings-19 "$library"; } | sort -u >"$work/names"
    used_categories "$work/names" >"$work/used"
    plist_values "$manifest" NSPrivacyAccessedAPIType >"$work/declared"
    while read -r category name; do
        grep -qxF "$category" "$work/declared" || echo "$category is not declared, but $name is used"
    done <"$work/used"
    while read -r category; do
        grep -qF "$category " "$work/used" || echo "$category is declared, but nothing of it is used"
    done <"$work/declared"
    states "$manifest" NSPrivacyTracking '<false/>' || echo "it does not deny tracking"
    for empty in NSPrivacyTrackingDomains NSPrivacyCollectedDataTypes; do
        states "$manifest" "$empty" '<array/>' || echo "$empty is not an empty list"
    done
}

# --- The report -------------------------------------------------------------------------------------

passed=0
failed=0

# row NAME PROMISE FINDINGS
row() {
    local finding
    if [ -z "$3" ]; then
        passed=$((passed + 1))
        printf 'pass  %-12s  %s\n' "$1" "$2"
    else
        failed=$((failed + 1))
        while read -r finding; do printf 'FAIL  %-12s  %s\n' "$1" "$finding"; done <<<"$3"
    fi
}

conclude() {
    echo "$passed checks passed, $failed failed"
    [ "$failed" = 0 ]
}

print_owners() {
    local owner
    echo
    echo "What it takes from outside"
    cut -f 1 "$work/owners" | sort | uniq -c | while read -r count owner; do
        printf '\n  %s, %d\n' "${owner/#-/nobody}" "$count"
        awk -F '\t' -v owner="$owner" '$1 == owner { print $2 }' "$work/owners" | sort | fold_list "$owner"
    done
}

# Prints C names side by side, and each C++ name on its own line.
fold_list() {
    if [ "$1" = libc++ ]; then uniq; else paste -sd ' ' | fold -s -w 104 | sed 's/ $//'; fi | sed 's/^/    /'
}

print_size() {
    local stripped=$work/stripped
    cp "$library" "$stripped"
    llvm-strip-19 -x "$stripped"
    printf '\nSize of the stripped library: %d bytes. Its largest sections:\n\n' "$(stat -c %s "$stripped")"
    llvm-size-19 -m "$stripped" | awk '$1 == "Section" { print $3, $2 }' | sort -rn | head -n 8 |
        awk '{ sub(/:$/, "", $2); printf "  %8d  %s\n", $1, $2 }'
    printf '\nIts largest sources:\n\n'
    awk '/^# Object files/ { part = "files" } /^# Symbols/ { part = "symbols" } /^# (Sections|Dead)/ { part = "" }
        match($0, /\[ *[0-9]+\]/) { number = substr($0, RSTART + 1, RLENGTH - 2) + 0 }
        part == "files" && number { name[number] = $NF }
        part == "symbols" && /^0x/ { print number, $2 }
        END { for (number in name) print "name", number, name[number] }' "$inputs/Kestrel.map" |
        while read -r number size rest; do
            if [ "$number" = name ]; then echo "name $size $rest"; else echo "size $number $((size))"; fi
        done |
        awk '$1 == "name" { name[$2] = $3 } $1 == "size" { size[$2] += $3 }
            END { for (n in name) print size[n] + 0, name[n] }' | sort -rn | head -n 10 |
        sed -E 's#Sources/CMakeFiles/[A-Za-z]+\.dir/#Sources/#; s#\.o$##' | awk '{ printf "  %8d  %s\n", $1, $2 }'
}

run_checks() {
    read_library
    row sources "every file of Sources/ compiles for arm64-apple-ios16.0 without a warning, and is linked" \
        "$(check_sources)"
    row ownership "ARC for all Objective-C++, the difference to the other runtime in one header" \
        "$(check_ownership)"
    row format "a dynamic library for arm64 and iOS 16.0" "$(check_format)"
    row libraries "linked with libSystem, libc++, Foundation and CoreFoundation alone" "$(check_libraries)"
    row exports "exports $entry_point alone" "$(check_exports)"
    row host "every undefined FM_ function is one of the host SDK's" "$(check_host_functions)"
    row system "everything else undefined is libSystem's, libc++'s, libobjc's, Foundation's or CoreFoundation's" \
        "$(check_system_functions)"
    row classes "has the Objective-C classes" "$(check_classes)"
    row foreign "nothing of the development host, of GNUstep or of this machine is inside" "$(check_foreign_matter)"
    row initialisers "no initialiser calls the host" "$(check_initialisers)"
    row bundle "has its files, valid property lists and identity" "$(check_bundle)"
    row version "the bundle's version is what Kestrel_Version answers" "$(check_version)"
    row privacy "the manifest declares what is used, no tracking and nothing collected" "$(check_privacy)"
}

fault_source=""
fault_export=""
laid_out=""
inputs=$work/inputs
while [ $# -gt 0 ]; do
    case $1 in
    --fault) fault_source=$(readlink -f "${2-}") || fail "--fault needs a source" ;;
    --export) fault_export=${2-} ;;
    --lay-out) laid_out=${2-} ;;
    --read) inputs=${2-} ;;
    *) fail "there is no option $1" ;;
    esac
    [ -n "${2-}" ] || fail "$1 needs a value"
    shift 2
done
if [ -z "${KESTREL_HOST-}" ] || [ -z "${KESTREL_PLUGIN-}" ]; then fail "KESTREL_HOST and KESTREL_PLUGIN are not set"; fi
bundle=$inputs/Kestrel.fmplugin
library=$bundle/Kestrel

if [ "$inputs" = "$work/inputs" ]; then
    mkdir -p "$root/build"
    exec 9>"$root/build/ios-check.lock"
    flock 9 # one at a time: they share the build folder
    say "building for the target"
    configure "$fault_source" "$fault_export"
    errors=$(build_errors)
    if [ -n "$errors" ]; then
        row sources "" "$errors"
        conclude
    fi
    lay_out "${laid_out:-$inputs}"
    [ -z "$laid_out" ] || exit 0
fi
run_checks
if [ -z "$fault_source" ] && [ "$inputs" = "$work/inputs" ]; then
    print_owners
    print_size
    echo
fi
conclude
