# Host functions that the library's initialisers reach. The input has, file by file,
#   own FILE NAME             NAME is local to this file
#   function FILE NAME        the following references belong to NAME
#   refers FILE NAME          a call, or an address that is taken
#   starts FILE NAME          called when the library is loaded
# The output has a line for each host function that the initialisers can reach: "NAME, by way of …".
# A NAME may have blanks: -[Class method].

{
    name = $0
    sub(/^[^ ]+ [^ ]+ /, "", name)
    node = ($2 SUBSEP name) in own ? $2 SUBSEP name : name
}

$1 == "own" { own[$2, name] = 1 }
$1 == "function" { current = node }
$1 == "refers" && current != "" { edges[current] = edges[current] "\n" node }
$1 == "starts" && !(node in way) {
    way[node] = name
    queue[++last] = node
}

END {
    for (next_one = 1; next_one <= last; next_one++) {
        from = queue[next_one]
        number = split(substr(edges[from], 2), targets, "\n")
        for (i = 1; i <= number; i++) {
            to = targets[i]
            if (to in way) continue
            name = to
            sub(".*" SUBSEP, "", name)
            if (name ~ /^_FM_/) print name ", by way of " way[from]
            way[to] = way[from] " > " name
            queue[++last] = to
        }
    }
}
