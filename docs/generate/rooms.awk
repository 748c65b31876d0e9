# Writes the table of rooms: the sources of each room, and the rooms that they include.
#
# usage: awk -f rooms.awk ROOMS.TXT SOURCE...
#
# Fails if a source is in no room, or if a room names a source that does not exist.
function stem(path) {
    sub(/.*\//, "", path)
    sub(/\.(h|cpp|h\.in)$/, "", path)
    return path
}
FNR == 1 { file++ }
file == 1 && (/^#/ || !NF) { next }
file == 1 {
    colon = index($0, ":")
    names[++rooms] = substr($0, 1, colon - 1)
    sources[rooms] = substr($0, colon + 2)
    count = split(sources[rooms], list, " ")
    for (i = 1; i <= count; i++) room[list[i]] = rooms
    next
}
FNR == 1 {
    current = stem(FILENAME)
    found[current] = 1
    if (!(current in room)) {
        print "rooms.txt: " current " is in no room" >"/dev/stderr"
        status = 1
    }
}
/^#include "/ {
    header = stem(substr($2, 2, length($2) - 2))
    if (header in room && room[header] != room[current]) includes[room[current], room[header]] = 1
}
END {
    for (name in room) {
        if (!(name in found)) {
            print "rooms.txt: there is no " name >"/dev/stderr"
            status = 1
        }
    }
    print "| Room | Sources | Includes |"
    print "|---|---|---|"
    for (i = 1; i <= rooms; i++) {
        gsub(/ /, "`, `", sources[i])
        text = ""
        for (j = 1; j <= rooms; j++) {
            if ((i, j) in includes) text = text (text == "" ? "" : ", ") names[j]
        }
        print "| " names[i] " | `" sources[i] "` | " (text == "" ? "nothing" : text) " |"
    }
    exit status
}
