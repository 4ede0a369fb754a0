#!/usr/bin/env bash
# Tests of the check without a Mac. Every fault must make exactly its own row fail, with a line that names the cause.
# Some faults are sources of this folder that are built into the plug-in; the others change files of a correct build.
# The check itself provides the environment.

set -euo pipefail

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
root=$(readlink -f "$here/../..")
check=$root/packaging/ios/check/check.sh
failures=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# judge NAME STATUS OUTPUT LINE...: passes if each LINE, a pattern for the rest of a line after FAIL, matches, and
# nothing else failed.
judge() {
    local name="${4%% *}: $1" status=$2 output=$3 line rest wrong=""
    shift 3
    rest=$(sed -nE 's/^FAIL +//p' <<<"$output")
    [ "$status" = 1 ] || wrong="the status is $status"
    for line in "$@"; do
        grep -qxE -- "$line" <<<"$rest" || wrong="no line is like $line"
        rest=$(grep -vxE -- "$line" <<<"$rest") || true
    done
    [ -z "$rest" ] || wrong="${wrong:-there is more to it}"
    if [ -z "$wrong" ]; then
        echo "pass  $name"
    else
        failures=$((failures + 1))
        printf 'FAIL  %s: %s\n%s\n%s\n' "$name" "$wrong" "$output" "$(cat "$work/errors")"
    fi
}

# built FAULT LINE... [--export FUNCTION]: judges a build with the source FAULT.mm.
built() {
    local fault=$1 output status=0 lines=() options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != --export ]; do
        lines+=("$1")
        shift
    done
    options=("$@")
    output=$("$check" --fault "$here/$fault.mm" "${options[@]}" 2>"$work/errors") || status=$?
    judge "$fault" "$status" "$output" "${lines[@]}"
}

# changed COMMAND LINE...: judges the files of a correct build after COMMAND has changed them.
changed() {
    local command=$1 output status=0
    shift
    rm -rf "$work/changed"
    cp -r "$work/good" "$work/changed"
    (cd "$work/changed" && LC_ALL=C bash -euc "$command")
    output=$("$check" --read "$work/changed" 2>"$work/errors") || status=$?
    judge "$command" "$status" "$output" "$@"
}

"$check" --lay-out "$work/good"
"$check" --read "$work/good" >"$work/output" || {
    cat "$work/output"
    echo "FAIL  without a fault the check has to pass"
    exit 1
}

unlisted='is not on the list of what iOS 16\.0 has: .*symbols\.txt.*'
barred="'system' is unavailable: not available on iOS"
selector="declares the selector 'stringByReplacingString:withString:'"
early='initialisers +before the host is ready:'
disk_space='privacy +NSPrivacyAccessedAPICategoryDiskSpace is not declared, but statfs is used'

built SecondExport 'exports +Surplus is exported as well' --export Surplus
built UnknownFunction "system +get_nprocs $unlisted"
built BarredFunction "sources +tests/ios/BarredFunction.mm:5:.*$barred.*"
built TooNewFunction "system +std::exception_ptr::__from_native_exception_pointer\\(void\\*\\) $unlisted"
built OnlyGnustep "sources +tests/ios/OnlyGnustep.mm:6:.* $selector.*"
built CountedByHand "sources +tests/ios/CountedByHand.mm:5:.*'retain' is unavailable: .*" \
    "sources +tests/ios/CountedByHand.mm:5:.* ARC forbids .*"
built UnknownHostFunction 'host +FM_Text_Reverse is no function of the host SDK'
built CallsHostAtStart "$early FM_Text_Constructor1, by way of .*makeText.*" "$early FM_Text_Delete, by way of .*"
built UndeclaredUse "$disk_space" "system +statfs $unlisted"

# Files and patterns of the changes.
kestrel=Sources/platform/Kestrel.mm
library=Kestrel.fmplugin/Kestrel
info=Kestrel.fmplugin/Info.plist
manifest=Kestrel.fmplugin/PrivacyInfo.xcprivacy
rename="llvm-objcopy-19 $library --redefine-sym"
relink="llvm-install-name-tool-19 $library"
methods="'__OBJC_\$_CLASS_METHODS_RegexBridge"
# Fields of LC_BUILD_VERSION: its number and length, the platform, the oldest version.
build_version='\x32\x00\x00\x00\x20\x00\x00\x00'
ios='\x02\x00\x00\x00'
oldest='\x00\x00\x10\x00'

belongs='belongs into Sources/platform/BothRuntimes\.h'
changed 'sed -i /Css.cpp.o/d Kestrel.map' 'sources +Sources/html/Css\.cpp is not part of the library'
changed "sed -i '/Kestrel.mm$/s/ -fobjc-arc / /' commands" \
    'ownership +Sources/platform/Kestrel\.mm is compiled without ARC'
changed "echo '[text retain];' >>$kestrel" "ownership +$kestrel:[0-9]+: $belongs"
changed "echo '[[text copy]release ];' >>$kestrel" "ownership +$kestrel:[0-9]+: $belongs"
changed "echo 'autorelease];' >>$kestrel" "ownership +$kestrel:[0-9]+: $belongs"
changed "echo '#  ifdef __APPLE__' >>$kestrel" "ownership +$kestrel:[0-9]+: $belongs"
changed "echo '#if DEBUG' >>Sources/platform/Delay.h" "ownership +Sources/platform/Delay\\.h:[0-9]+: $belongs"
changed "echo '#ifdef GNUSTEP' >>Sources/Kestrel_Base64.h" "ownership +Sources/Kestrel_Base64\\.h:[0-9]+: $belongs"

changed "sed -i 's/$build_version$ios$oldest/$build_version$ios\\x00\\x00\\x11\\x00/' $library" \
    'format +it is not for iOS 16\.0 and later'
changed "sed -i 's/$build_version$ios/$build_version\\x07\\x00\\x00\\x00/' $library" 'format +it is not for iOS devices'
changed "$relink -id /tmp/Kestrel" 'format +its install name is /tmp/Kestrel'
changed "$relink -change /usr/lib/libc++.1.dylib /usr/lib/libz.1.dylib" \
    'libraries +it is linked with /usr/lib/libz\.1\.dylib'
changed "$rename '_OBJC_CLASS_\$_RegexBridge=_Bridge'" 'classes +the class RegexBridge is missing'

changed "$rename $methods=__ZN4host4File5closeEv'" 'foreign +host::File::close\(\) belongs to the development host'
changed "$rename $methods=_objc_msg_lookup'" 'foreign +objc_msg_lookup belongs to GNUstep'
changed "$rename $methods=_GSPrivate'" 'foreign +GSPrivate belongs to GNUstep'
changed "$rename $methods=_$root/Sources'" "foreign +a path of this machine: .*$root/Sources"
changed "llvm-objcopy-19 $library --add-section __OBJC,__module_info=$info" \
    "foreign +__OBJC,__module_info is no section of Apple's"
changed ': >graph' 'initialisers +the object files could not be read'

changed "sed -i 's/com.vex.kestrel/com.vex.other/' $info" \
    'bundle +CFBundleIdentifier is "com\.vex\.other" and not com\.vex\.kestrel'
changed "sed -i '/MinimumOSVersion/{n;s/16/17/}' $info" 'bundle +MinimumOSVersion is "17\.0" and not 16\.0'
changed "rm $info" 'bundle +Info\.plist is missing' 'bundle +Info\.plist is no property list' \
    'bundle +[A-Za-z]+ is "" and not .*' 'version +CFBundle[A-Za-z]*Version[A-Za-z]* is "", .*'
changed "sed -i '/<\\/dict>/,\$d' $manifest" 'bundle +PrivacyInfo\.xcprivacy is no property list' 'privacy .*'
for key in CFBundleVersion CFBundleShortVersionString; do
    changed "sed -i '/<key>$key</{n;s/>[0-9.]*</>0.9</}' $info" \
        "version +$key is \"0\\.9\", Kestrel_Version answers \"[0-9.]+\""
done

changed "sed -i '/NSPrivacyTracking</{n;s/false/true/}' $manifest" 'privacy +it does not deny tracking'
changed "sed -i '/NSPrivacyTrackingDomains/{n;s#.*#<array><string>example.com</string></array>#}' $manifest" \
    'privacy +NSPrivacyTrackingDomains is not an empty list'
changed "sed -i '/NSPrivacyCollectedDataTypes/{n;s#.*#<array><dict/></array>#}' $manifest" \
    'privacy +NSPrivacyCollectedDataTypes is not an empty list'
changed "sed -i '/NSPrivacyCollectedDataTypes/{N;d}' $manifest" \
    'privacy +NSPrivacyCollectedDataTypes is not an empty list'
changed "sed -i 's/CategoryFileTimestamp/CategoryUserDefaults/' $manifest" \
    'privacy +NSPrivacyAccessedAPICategoryFileTimestamp is not declared, but stat is used' \
    'privacy +NSPrivacyAccessedAPICategoryUserDefaults is declared, but nothing of it is used'

[ "$failures" = 0 ]
