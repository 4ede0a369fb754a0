#!/usr/bin/env bash
# Tests of the app's build phase. It copies the right part of Kestrel.xcframework into the app, signs it where the app
# is signed, and reports a missing variable.

set -euo pipefail

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

mkdir -p "$scratch"/Kestrel.xcframework/{ios-arm64,ios-arm64_x86_64-simulator}/Kestrel.framework "$scratch/bin"
printf '#!/bin/sh\necho "signed: $*"\n' >"$scratch/bin/codesign"
chmod +x "$scratch/bin/codesign"
export KESTREL_XCFRAMEWORK=$scratch/Kestrel.xcframework TARGET_BUILD_DIR=$scratch/app FRAMEWORKS_FOLDER_PATH=Frameworks

# expect OUTPUT VARIABLE=VALUE…: compares the phase's output with these variables, without the scratch folder's path.
expect() {
    local wanted=$1 answer
    shift
    answer=$(env "$@" PATH="$scratch/bin:$PATH" bash packaging/ios/embed.sh 2>&1) || true
    answer=${answer//"$scratch/"/}
    [ "$answer" = "$wanted" ] || { echo "FAILED: $* gives \"$answer\", not \"$wanted\"" >&2; exit 1; }
}

expect 'error: PLATFORM_NAME is not set' KESTREL_XCFRAMEWORK=none
expect 'error: KESTREL_XCFRAMEWORK is not set' -u KESTREL_XCFRAMEWORK
expect 'error: there is no Kestrel for macosx' PLATFORM_NAME=macosx
expect 'error: none/ios-arm64/Kestrel.framework is missing' PLATFORM_NAME=iphoneos KESTREL_XCFRAMEWORK=none
expect '' PLATFORM_NAME=iphoneos
[ -d "$scratch/app/Frameworks/Kestrel.fmplugin" ] || { echo "FAILED: the plug-in is not in the app" >&2; exit 1; }
expect 'signed: --force --sign Ada --timestamp=none app/Frameworks/Kestrel.fmplugin' \
    PLATFORM_NAME=iphoneos CODE_SIGNING_ALLOWED=YES EXPANDED_CODE_SIGN_IDENTITY=Ada
expect 'signed: --force --sign - --timestamp=none app/Frameworks/Kestrel.fmplugin' \
    PLATFORM_NAME=iphonesimulator CODE_SIGNING_ALLOWED=YES
