#!/bin/sh
# Checks that every relative link of the pages names a file of the tree.
#
# usage: check_links.sh SOURCE_FOLDER
cd "$1" || exit 1
status=0
for page in *.md docs/*.md benchmarks/*.md; do
    for link in $(grep -o '[^[]](<*[^)]*)' "$page" | sed 's/^.](//; s/)$//; s/#.*//' | grep -v '^[a-z]*:'); do
        [ -e "$(dirname "$page")/$link" ] || { echo "$page: there is no file $link"; status=1; }
    done
done
exit $status
