#!/usr/bin/env bash
# The example documents are converted to HTML that validators accept, and usage errors are reported.

set -euo pipefail

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

count=0
for document in examples/documents/*.html; do
    count=$((count + 1))
    name=$(basename "$document" .html)
    "$KESTREL_HOST" html "$document" >"$scratch/$name.html" || fail "$document cannot be converted"
    "$KESTREL_HOST" html "$document" -o "$scratch/again.html"
    cmp "$scratch/$name.html" "$scratch/again.html" || fail "-o writes something else"
    { printf '<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>%s</title>\n' "$name"
      sed 's/<\/style>/&<\/head><body>/' "$scratch/$name.html"
      printf '</body></html>\n'; } >"$scratch/page.html"
    if command -v xmllint >/dev/null; then
        # xmllint does not know <mark>.
        if xmllint --html --noout "$scratch/page.html" 2>&1 | grep 'error' | grep -v 'Tag mark invalid'; then
            fail "xmllint finds errors in $name"
        fi
    fi
    if command -v tidy >/dev/null; then
        # A run may be a single blank, which tidy would otherwise report as an empty element.
        tidy -quiet -errors --drop-empty-elements no "$scratch/page.html" >"$scratch/tidy" 2>&1 ||
            { cat "$scratch/tidy" >&2; fail "tidy finds errors in $name"; }
    fi
done
[ "$count" -ge 3 ] || fail "there are only $count documents"

expect() {
    local wanted=$1 answer
    shift
    answer=$("$@" | tr '\r' '|') || fail "$* has failed"
    [ "$answer" = "$wanted" ] || fail "$*: $answer"
}
convert() { printf '%s' "$1" >"$scratch/in.html"; shift; "$KESTREL_HOST" html "$scratch/in.html" "$@"; }
expect '<b>Hello</b> world' convert '<b>Hello</b> world'
expect '<strong>Hello</strong> <i>world</i>' convert '<b>Hello</b> <i>world</i>' --tags $'bold=strong\nall'
expect '<span style="color:#ff0000;">x</span>' convert '<font color=red>x</font>' --classes '' --styles color
expect '$x & y' bash -c 'echo "$1" | "$KESTREL_HOST" html - | sed "s/&amp;/\&/"' - '$x & y'
expect '<p style="text-align:center;">a</p>|<p>b</p>|' convert '<center>a</center>b' --classes ''

expect_status() {
    local wanted=$1 status=0
    shift
    "$@" >/dev/null 2>"$scratch/errors" || status=$?
    [ "$status" = "$wanted" ] || fail "$* ends with $status"
    [ -s "$scratch/errors" ] || fail "$* says nothing"
}
expect_status 2 "$KESTREL_HOST" html
expect_status 2 "$KESTREL_HOST" html "$scratch/none.html"
expect_status 2 "$KESTREL_HOST" html examples
expect_status 2 "$KESTREL_HOST" html examples/documents/article.html -o "$scratch/none/out.html"
printf '<div>%.0s' {1..300} >"$scratch/deep.html"
expect_status 2 "$KESTREL_HOST" html "$scratch/deep.html"
