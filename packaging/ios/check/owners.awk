# awk -v sdk=FILE -f owners.awk symbols.txt NAMES
# Prints "OWNER<tab>NAME" for each of NAMES, with the owner "-" for what is nobody's. FILE has the names of
# the host SDK's functions, one a line.

function pattern(glob) {
    gsub(/[][(){}.^$+?|\\]/, "\\\\&", glob)
    gsub(/\*/, ".*", glob)
    return "^" glob "$"
}

BEGIN {
    while ((getline name < sdk) > 0) owner_of[name] = "FMWrapper"
}

FNR == NR {
    if (/^#/ || !NF) next
    if (/^\[/) owner = substr($0, 2, length($0) - 2)
    else if (/\*/) {
        patterns[++count] = pattern($0)
        pattern_owner[count] = owner
    } else owner_of[$0] = owner
    next
}

{
    found = ($0 in owner_of) ? owner_of[$0] : "-"
    for (i = 1; found == "-" && i <= count; i++)
        if ($0 ~ patterns[i]) found = pattern_owner[i]
    print found "\t" $0
}
