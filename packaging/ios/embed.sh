#!/usr/bin/env bash
# A "Run Script" build phase of the app. It copies the plug-in for the current platform into the app, as
# Frameworks/Kestrel.fmplugin, and signs it with the app's identity. KESTREL_XCFRAMEWORK is the path of
# Kestrel.xcframework; Xcode sets the other variables.

set -euo pipefail

for name in KESTREL_XCFRAMEWORK PLATFORM_NAME TARGET_BUILD_DIR FRAMEWORKS_FOLDER_PATH; do
    if [ -z "${!name-}" ]; then
        echo "error: $name is not set"
        exit 1
    fi
done
case $PLATFORM_NAME in
iphoneos) slice=$KESTREL_XCFRAMEWORK/ios-arm64/Kestrel.framework ;;
iphonesimulator) slice=$(echo "$KESTREL_XCFRAMEWORK"/ios-*-simulator/Kestrel.framework) ;;
*)
    echo "error: there is no Kestrel for $PLATFORM_NAME"
    exit 1
    ;;
esac
if [ ! -d "$slice" ]; then
    echo "error: $slice is missing"
    exit 1
fi

plugin=$TARGET_BUILD_DIR/$FRAMEWORKS_FOLDER_PATH/Kestrel.fmplugin
rm -rf "$plugin"
mkdir -p "$(dirname "$plugin")"
cp -R "$slice" "$plugin"
if [ "${CODE_SIGNING_ALLOWED-NO}" = YES ]; then
    # The simulator needs no identity; "-" signs without one.
    codesign --force --sign "${EXPANDED_CODE_SIGN_IDENTITY:--}" --timestamp=none "$plugin"
fi
