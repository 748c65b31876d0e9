#!/bin/sh
# Writes the generated parts of the pages, or reports those that are not up to date.
#
# usage: update.sh --check|--write SOURCE_FOLDER FOLDER_OF_PROGRAMS [EMULATOR...]
#
# A generated part is between <!-- NAME --> and <!-- /NAME -->. catalogue.md and codes-tables.md are generated as
# a whole.
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

# replace_in PAGE NAME: puts $work/part between the marks of $work/PAGE, and copies that page to $work/page for
# settle.
replace_in() {
    grep -qxF "<!-- $2 -->" "$work/$1" || { echo "docs/$1.md has no mark $2"; exit 1; }
    awk -v begin="<!-- $2 -->" -v end="<!-- /$2 -->" -v part="$work/part" '
        $0 == end { skipping = 0 }
        !skipping { print }
        $0 == begin { while ((getline line < part) > 0) print line; skipping = 1 }
    ' "$work/$1" >"$work/page"
    cp "$work/page" "$work/$1"
}

# replace PAGE NAME: does all of it for a page with one generated part.
replace() {
    cp "$source/docs/$1.md" "$work/$1" || exit 1
    replace_in "$1" "$2"
    settle "$1.md"
}

"$@" "$programs/generate_catalogue" markdown >"$work/page" || exit 1
settle catalogue.md
"$@" "$programs/generate_codes" >"$work/page" || exit 1
settle codes-tables.md
awk -f "$source/docs/generate/parser_rows.awk" "$source/tests/data/parser.tsv" >"$work/part" || exit 1
replace notation parser.tsv
cp "$source/docs/design.md" "$work/design" || exit 1
for folder in src/mensor src/mensor_exact src/mensor_codes src/mensor_checked tools/mensor; do
    find "$source/$folder" -maxdepth 1 \( -name '*.h' -o -name '*.h.in' -o -name '*.cpp' -o -name '*.def' \) |
        sort | xargs awk -v library="${folder#src/}" -f "$source/docs/generate/rooms.awk" \
        "$source/docs/generate/rooms.txt" >"$work/part" || exit 1
    replace_in design "rooms of $folder"
done
settle design.md
"$@" "$programs/generate_collisions" >"$work/part" || exit 1
replace reliability collisions
cp "$source/docs/everyday.md" "$work/everyday" || exit 1
for table in spellings words traps notes refusals forms; do
    "$@" "$programs/generate_everyday" $table >"$work/part" || exit 1
    replace_in everyday $table
done
settle everyday.md
exit $status
