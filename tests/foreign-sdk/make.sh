#!/usr/bin/env bash
# usage: make.sh INTERFACE SDK
#
# Makes SDK/FMWrapper from INTERFACE/FMWrapper, with two differences of the vendor's headers: FMXCalcEngine.h needs
# an earlier include that declares QuadChar, and two members of fmx::Data are deprecated.

set -euo pipefail

rm -rf "$2"
cp -R "$1" "$2"
cd "$2/FMWrapper"
sed -i -e '/include "FMWrapper\/FMX\(Types\|BinaryData\).h"/d' -e '/^namespace fmx {/a class BinaryData; class Locale;' \
    FMXText.h FMXData.h
sed -i -E 's/^    (.* Get(FontID|FontInfo)\(.*displayName,)/    [[deprecated]] \1/' FMXData.h
