#!/usr/bin/env bash
# Makes docs/gallery.md and its pictures from the plug-in's current results. `./kestrel gallery` runs it.
#
#   docs/gallery.sh           writes docs/gallery.md and docs/gallery/*.png
#   docs/gallery.sh --text    prints the page without writing files
#
# KESTREL_HOST and KESTREL_PLUGIN name the host's program and the plug-in, KESTREL_BROWSER the browser (chromium).

set -euo pipefail

docs=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
pictures=$docs/gallery
width=620 height=1200 # white space at the bottom is cut off

# Name, title, description, calculation.
cases=(
    'elements' 'Elements' 'Formatting that has an HTML element becomes that element.'
    'Kestrel_GetAsHTML ( TextStyleAdd ( "Hello" ; Bold ) & " world, " & TextStyleAdd ( "slanted" ; Italic ) & ", " & TextStyleAdd ( "under" ; Underline ) & " and " & TextStyleAdd ( "through" ; StrikeThrough ) & ", " & TextStyleAdd ( "marked" ; HighlightYellow ) & ", H" & TextStyleAdd ( "2" ; Subscript ) & "O, x" & TextStyleAdd ( "2" ; Superscript ) )'

    'classes' 'Classes' 'The other formatting of a run becomes a class. Runs with the same formatting share it.'
    'Kestrel_GetAsHTML ( TextColor ( "red" ; RGB ( 178 ; 34 ; 34 ) ) & ", " & TextSize ( "large" ; 24 ) & ", " & TextFont ( "typed" ; "DejaVu Sans Mono" ) & ", " & TextStyleAdd ( "doubly underlined" ; DoubleUnderline ) & ", " & TextColor ( "red again" ; RGB ( 178 ; 34 ; 34 ) ) )'

    'inline' 'Inline styles' 'This example has no classes and no elements, so every formatting becomes a style.'
    'Kestrel_GetAsHTML ( TextStyleAdd ( "wide" ; Extend ) & " " & TextStyleAdd ( "narrow" ; Condense ) & " " & TextStyleAdd ( "Small Caps" ; SmallCaps ) & " " & TextStyleAdd ( "upper" ; Uppercase ) & " " & TextStyleAdd ( "LOWER" ; Lowercase ) & " " & TextStyleAdd ( "title case" ; Titlecase ) & " " & TextStyleAdd ( "bold" ; Bold ) ; "" ; "" )'

    'combinations' 'Combinations' 'Bold and italic together become one element. Italic alone becomes a named class.'
    'Kestrel_GetAsHTML ( TextStyleAdd ( "Both" ; Bold + Italic ) & ", " & TextStyleAdd ( "bold" ; Bold ) & " or " & TextStyleAdd ( "slanted" ; Italic ) ; "bold+italic=strong" & Char ( 13 ) & "bold=b" ; "italic=quote" )'

    'paragraphs' 'Paragraphs' 'Each paragraph becomes an element. Formatting that all of its runs share moves to this element.'
    'Kestrel_GetAsHTML ( TextColor ( "All of this is red" & TextStyleAdd ( ", some of it bold" ; Bold ) ; RGB ( 178 ; 34 ; 34 ) ) & Char ( 13 ) & "a < b & c" & Char ( 8232 ) & "after a soft line break" )'

    'headings' 'Headings' 'A block element replaces the paragraph element when the whole paragraph has its formatting.'
    'Kestrel_GetAsHTML ( TextSize ( TextStyleAdd ( "A heading" ; Bold ) ; 24 ) & Char ( 13 ) & "and its " & TextStyleAdd ( "text" ; Bold ) ; "bold+size=h2" & Char ( 13 ) & "all" )'
)

# Name, title.
documents=(
    article 'An article'
    invoice 'An invoice'
    multilingual 'Many languages'
)

host() { "$KESTREL_HOST" "$@"; }
lines() { tr '\r' '\n'; }

page() {
    printf '<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>%s</title>\n' "$1"
    printf '<style>body { font: 15px "DejaVu Sans"; margin: 16px }</style></head><body>\n'
    cat
    printf '</body></html>\n'
}

# picture FILE NAME: draws the page with the browser.
picture() {
    local root=()
    if [ "$(id -u)" = 0 ]; then root=(--no-sandbox); fi
    "${KESTREL_BROWSER:-chromium}" --headless --disable-gpu --disable-dev-shm-usage "${root[@]}" \
        --hide-scrollbars --host-resolver-rules='MAP * ~NOTFOUND' --user-data-dir="$scratch/profile" \
        --window-size="$width,$height" --screenshot="$scratch/picture.png" "file://$1" >"$scratch/log" 2>&1 ||
        { cat "$scratch/log" >&2; exit 1; }
    pngtopnm "$scratch/picture.png" | pnmcrop -quiet -white -bottom -margin=16 | pnmtopng -quiet >"$pictures/$2.png"
}

each_case() { for ((i = 0; i < ${#cases[@]}; i += 4)); do "$1" "${cases[@]:i:4}"; done; }
each_document() { for ((i = 0; i < ${#documents[@]}; i += 2)); do "$1" "${documents[@]:i:2}"; done; }

write_case() {
    printf '\n## %s\n\n%s\n\n```\n%s\n```\n\n```html\n%s\n```\n\n![%s](gallery/%s.png)\n' \
        "$2" "$3" "$4" "$(host eval "$4" | lines)" "$2" "$1"
}
write_document() {
    local file=examples/documents/$1.html
    printf '\n## %s\n\n`./kestrel html %s`: the document and the output.\n\n' "$2" "$file"
    printf '![%s, the document](gallery/%s-in.png)\n![%s, the output](gallery/%s-out.png)\n\n' \
        "$2" "$1" "$2" "$1"
    printf '<details><summary>The HTML</summary>\n\n```html\n%s\n```\n\n</details>\n' \
        "$(host html "$docs/../$file" | lines)"
}
write_page() {
    cat <<'END'
# Gallery

This page shows styled texts, the HTML that `Kestrel_GetAsHTML` makes of them, and the browser's picture of it.
[The function's page](functions/Kestrel_GetAsHTML.md) describes the arguments. `./kestrel gallery` makes this page and
its pictures again.
END
    each_case write_case
    each_document write_document
}

draw_case() {
    host eval "$4" | page "$2" >"$scratch/page.html"
    picture "$scratch/page.html" "$1"
}
draw_document() {
    local file=$docs/../examples/documents/$1.html
    picture "$(readlink -f "$file")" "$1-in"
    host html "$file" | page "$2" >"$scratch/page.html"
    picture "$scratch/page.html" "$1-out"
}

if [ "${1-}" = --text ]; then
    write_page
    exit
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$pictures"
write_page >"$scratch/gallery.md"
each_case draw_case
each_document draw_document
mv "$scratch/gallery.md" "$docs/gallery.md"
