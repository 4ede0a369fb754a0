#!/usr/bin/env bash
# The examples of tests/examples/*.tsv give their results. A file NAME.tsv belongs to the solution NAME beside it,
# where there is one.

set -euo pipefail

for examples in tests/examples/*.tsv; do
    solution=()
    if [ -d "${examples%.tsv}" ]; then solution=(--solution "${examples%.tsv}"); fi
    "$KESTREL_HOST" expect "${solution[@]}" "$examples"
done
