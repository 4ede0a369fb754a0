#!/usr/bin/env bash
# The examples of tests/examples give their results. A file NAME.tsv or NAME.md belongs to the solution NAME beside
# it or in tests/solutions, where there is one.

set -euo pipefail

for examples in tests/examples/*.tsv tests/examples/*.md; do
    solution=()
    name=$(basename "${examples%.*}")
    for folder in "tests/examples/$name" "tests/solutions/$name"; do
        if [ -d "$folder" ]; then solution=(--solution "$folder"); fi
    done
    "$KESTREL_HOST" expect "${solution[@]}" "$examples"
done
