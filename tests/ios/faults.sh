#!/usr/bin/env bash
# Every fault in this folder makes the check without a Mac fail, with a line that names the cause. Takes its
# environment from the check itself.

set -euo pipefail

here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
check=$here/../../packaging/ios/check/check.sh
failures=0

# fails_with FAULT LINE [OPTION]...: LINE is a pattern for all of a line.
fails_with() {
    local fault=$1 line=$2 output status=0
    shift 2
    output=$("$check" --fault "$here/$fault.mm" "$@" 2>/dev/null) || status=$?
    if [ "$status" = 1 ] && grep -qxE -- "$line" <<<"$output"; then
        echo "pass  $fault"
    else
        failures=$((failures + 1))
        printf 'FAIL  %s: status %s and no line like\n%s\nin\n%s\n' "$fault" "$status" "$line" "$output"
    fi
}

source_line='FAIL  sources +tests/ios'

fails_with SecondExport 'FAIL  exports +Surplus is exported as well' --export Surplus
fails_with UnknownFunction 'FAIL  system +get_nprocs is nothing that iOS 16\.0 has, by the list'
fails_with BarredFunction "$source_line/BarredFunction.mm:5:.*'system' is unavailable: not available on iOS"
fails_with TooNewFunction 'FAIL  system +std::__1::pmr::get_default_resource\(\) is nothing that iOS 16\.0 has, by the list'
fails_with OnlyGnustep "$source_line/OnlyGnustep.mm:6:.* declares the selector 'stringByReplacingString:withString:'"
fails_with CountedByHand "$source_line/CountedByHand.mm:5:.*'retain' is unavailable: .*"
fails_with UnknownHostFunction 'FAIL  host +FM_Text_Reverse is no function of the host SDK'
fails_with CallsHostAtStart 'FAIL  initialisers +before the host is ready: FM_Text_Constructor1, by way of .*makeText.*'
fails_with UndeclaredUse 'FAIL  privacy +NSPrivacyAccessedAPICategoryDiskSpace is not declared, but statfs is used'

[ "$failures" = 0 ]
