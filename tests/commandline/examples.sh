#!/usr/bin/env bash
# The examples of tests/examples give their results. A file NAME.tsv or NAME.md belongs to the solution NAME beside
# it, where there is one.

set -euo pipefail

for examples in tests/examples/*.tsv tests/examples/*.md; do
    solution=()
    if [ -d "${examples%.*}" ]; then solution=(--solution "${examples%.*}"); fi
    "$KESTREL_HOST" expect "${solution[@]}" "$examples"
done
