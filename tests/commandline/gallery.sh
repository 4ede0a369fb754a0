#!/usr/bin/env bash
# The gallery must show the plug-in's current results.

set -euo pipefail

bash docs/gallery.sh --text | diff docs/gallery.md - || {
    echo "FAILED: docs/gallery.md is not up to date; ./kestrel gallery makes it anew" >&2
    exit 1
}
