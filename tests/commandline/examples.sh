#!/usr/bin/env bash
# The examples of tests/examples/*.tsv give their results. A file NAME.tsv belongs to the solution NAME beside it or in
# tests/solutions, where there is one.

set -euo pipefail

for examples in tests/examples/*.tsv; do
    solution=()
    name=$(basename "$examples" .tsv)
    for folder in "tests/examples/$name" "tests/solutions/$name"; do
        if [ -d "$folder" ]; then solution=(--solution "$folder"); fi
    done
    "$KESTREL_HOST" expect "${solution[@]}" "$examples"
done
