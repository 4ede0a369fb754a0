# awk -v sdk=FILE -f owners.awk symbols.txt NAMES
# Prints "OWNER<tab>NAME" for each of NAMES; the owner is "-" for an unknown name. FILE has the names of the
# host SDK's functions, one on each line.

BEGIN {
    while ((getline name < sdk) > 0) owner_of[name] = "FMWrapper"
}

FNR == NR {
    if (/^#/ || !NF) next
    if (/^\[/) owner = substr($0, 2, length($0) - 2)
    else owner_of[$0] = owner
    next
}

{ print (($0 in owner_of) ? owner_of[$0] : "-") "\t" $0 }
