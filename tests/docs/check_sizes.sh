#!/bin/sh
# usage: check_sizes.sh README COLUMN STRIP LIBRARY...
#
# Checks that the sizes in the table of README, in its COLUMN (1: x86-64, 2: 32-bit ARM), are those of the
# stripped libraries within a tenth, and that the table names no other library.
set -eu
readme=$1 column=$2 strip=$3
shift 3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

sed -n '/^<!-- sizes -->$/,/^<!-- \/sizes -->$/s/^| `\(.*\)` | \([0-9]*\) kB | \([0-9]*\) kB |$/\1 \2 \3/p' "$readme" > "$work/table"
for library; do
    "$strip" --strip-unneeded "$library" -o "$work/stripped"
    bytes=$(wc -c < "$work/stripped")
    name=$(basename "$library")
    shown=$(awk -v name="$name" -v column="$column" 'index($1, name ".") == 1 { print $(column + 1) }' "$work/table")
    [ -n "$shown" ] && [ $((shown * 900)) -le "$bytes" ] && [ $((shown * 1100)) -ge "$bytes" ] || {
        echo "$name has $bytes bytes, the README says \"$shown kB\": run scripts/package --sizes"
        failed=1
    }
done
[ "$(wc -l < "$work/table")" -eq $# ] || { echo "the README lists other libraries"; failed=1; }
exit $failed
