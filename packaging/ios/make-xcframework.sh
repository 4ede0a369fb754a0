#!/usr/bin/env bash
# usage: FM_SDK_DIR=DIR make-xcframework.sh [FOLDER]
#
# Builds the plug-in for devices and for the simulator on a Mac, and puts both into FOLDER/Kestrel.xcframework
# (build/ by default). Both are called Kestrel.framework there, because Xcode accepts no other kind of bundle;
# embed.sh copies one into the app as Kestrel.fmplugin.

set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

fail() {
    echo "make-xcframework: $*" >&2
    exit 2
}

command -v xcodebuild >/dev/null || fail "this needs a Mac with Xcode"
[ -n "${FM_SDK_DIR-}" ] || fail "FM_SDK_DIR is not set"
mkdir -p "${1-$root/build}"
result=$(cd "${1-$root/build}" && pwd)/Kestrel.xcframework

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
slices=()
for preset in ios ios-simulator; do
    # An existing build folder keeps its architectures; the preset would reset them.
    if [ -f "$root/build/$preset/CMakeCache.txt" ]; then
        cmake -D FM_SDK_DIR="$FM_SDK_DIR" "$root/build/$preset"
    else
        (cd "$root" && cmake --preset "$preset")
    fi
    cmake --build "$root/build/$preset"
    mkdir "$work/$preset"
    cp -R "$root/build/$preset/Kestrel.fmplugin" "$work/$preset/Kestrel.framework"
    xcrun strip -x "$work/$preset/Kestrel.framework/Kestrel"
    slices+=(-framework "$work/$preset/Kestrel.framework")
done

rm -rf "$result"
xcodebuild -create-xcframework "${slices[@]}" -output "$result"
