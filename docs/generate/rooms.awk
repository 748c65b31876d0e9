# Writes the table of rooms of one library: the sources of each room, and the rooms that they include.
#
# usage: awk -v library=LIBRARY -f rooms.awk ROOMS.TXT SOURCE...
#
# Fails if a source is in no room, if a room names a source that does not exist, if a header or .def file does
# not begin with its name and purpose, or if a room includes one below it. The core library may do the latter.
function stem(path) {
    sub(/.*\//, "", path)
    sub(/\.(h|cpp|h\.in)$/, "", path)
    return path
}
function fail(text) {
    print "rooms: " text >"/dev/stderr"
    status = 1
}
FNR == 1 { file++ }
file == 1 && (/^#/ || !NF) { next }
file == 1 && /^\[/ {
    section = substr($0, 2, length($0) - 2)
    libraries[++count] = section
    next
}
file == 1 {
    colon = index($0, ":")
    rooms[section]++
    names[section, rooms[section]] = substr($0, 1, colon - 1)
    sources[section, rooms[section]] = substr($0, colon + 2)
    size = split(substr($0, colon + 2), list, " ")
    for (i = 1; i <= size; i++) {
        room[section, list[i]] = rooms[section]
        if (section == library) isMissing[list[i]] = 1
    }
    next
}
FNR == 1 {
    current = stem(FILENAME)
    delete isMissing[current]
    if (!((library, current) in room)) fail("rooms.txt: " FILENAME " is in no room")
    name = FILENAME
    sub(/.*\//, "", name)
    sub(/\.in$/, "", name)
    if (name !~ /\.cpp$/ && index($0, "// " name ": ") != 1) fail(FILENAME " does not begin with // " name ": PURPOSE")
}
/^#include ["<]/ {
    path = substr($2, 2, length($2) - 2)
    other = library
    if (match(path, /^.*\//)) other = substr(path, 1, RLENGTH - 1)
    header = stem(path)
    if ((other, header) in room) includes[room[library, current], other, room[other, header]] = 1
}
END {
    for (name in isMissing) fail("rooms.txt: there is no " name " in " library)
    print "| Room | Sources | Includes |"
    print "|---|---|---|"
    for (i = 1; i <= rooms[library]; i++) {
        text = ""
        for (j = 1; j <= rooms[library]; j++) {
            if (j == i || !((i, library, j) in includes)) continue
            if (j > i && library != "mensor") fail(names[library, i] " includes " names[library, j] ", a room below it")
            text = text (text == "" ? "" : ", ") names[library, j]
        }
        for (k = 1; k <= count; k++) {
            other = libraries[k]
            others = ""
            for (j = 1; j <= rooms[other] && other != library; j++) {
                if ((i, other, j) in includes) others = others (others == "" ? "" : ", ") names[other, j]
            }
            if (others != "") text = text (text == "" ? "" : "; ") "of `" other "`: " others
        }
        files = sources[library, i]
        gsub(/ /, "`, `", files)
        print "| " names[library, i] " | `" files "` | " (text == "" ? "nothing" : text) " |"
    }
    exit status
}
