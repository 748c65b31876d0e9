#!/bin/sh
# Writes the generated parts of the pages, or reports those that are not up to date.
#
# usage: update.sh --check|--write SOURCE_FOLDER FOLDER_OF_PROGRAMS [EMULATOR...]
#
# A part stands between <!-- NAME --> and <!-- /NAME -->; catalogue.md and codes-tables.md are whole ones.
mode=$1 source=$2 programs=$3
shift 3
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
status=0

# settle PAGE: compares the new page, $work/page, with the one in the tree, or writes it there.
settle() {
    if [ "$mode" = --write ]; then
        cmp -s "$work/page" "$source/docs/$1" || cp "$work/page" "$source/docs/$1"
    elif ! diff -u "$source/docs/$1" "$work/page"; then
        echo "docs/$1 is not up to date: run scripts/docs --update"
        status=1
    fi
}

# insert FILE NAME: the file with $work/part between the marks.
insert() {
    awk -v begin="<!-- $2 -->" -v end="<!-- /$2 -->" -v part="$work/part" '
        $0 == end { skipping = 0 }
        !skipping { print }
        $0 == begin { while ((getline line < part) > 0) print line; skipping = 1 }
    ' "$1"
}

# replace PAGE NAME: puts $work/part between the marks.
replace() {
    grep -qxF "<!-- $2 -->" "$source/docs/$1" || { echo "docs/$1 has no mark $2"; exit 1; }
    insert "$source/docs/$1" "$2" >"$work/page"
    settle "$1"
}

"$@" "$programs/generate_catalogue" markdown >"$work/page" || exit 1
settle catalogue.md
"$@" "$programs/generate_codes" >"$work/page" || exit 1
settle codes-tables.md
awk -f "$source/docs/generate/parser_rows.awk" "$source/tests/data/parser.tsv" >"$work/part" || exit 1
replace notation.md parser.tsv
awk -f "$source/docs/generate/rooms.awk" "$source/docs/generate/rooms.txt" "$source"/src/mensor/*.h \
    "$source"/src/mensor/*.cpp "$source"/src/mensor/*.h.in >"$work/part" || exit 1
replace design.md rooms
"$@" "$programs/generate_collisions" >"$work/part" || exit 1
replace reliability.md collisions
cp "$source/docs/everyday.md" "$work/everyday" || exit 1
for table in spellings words traps notes refusals; do
    "$@" "$programs/generate_everyday" $table >"$work/part" || exit 1
    grep -qxF "<!-- $table -->" "$work/everyday" || { echo "docs/everyday.md has no mark $table"; exit 1; }
    insert "$work/everyday" $table >"$work/page"
    cp "$work/page" "$work/everyday"
done
settle everyday.md
exit $status
