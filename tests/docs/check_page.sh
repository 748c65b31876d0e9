#!/bin/sh
# Runs every snippet of a page, each in a process of its own, and compares the output with that on the page.
#
# usage: check_page.sh FOLDER PAGE [EMULATOR...]
folder=$1 page=$2
shift 2

actual=$folder/$page.actual
while read -r line kind; do
    echo "--- line $line"
    case $kind in
        program) "$@" "$folder/$page-$line" </dev/null 2>&1 ;;
        function) "$@" "$folder/docs_functions" "$page" "$line" </dev/null 2>&1 ;;
    esac
    status=$?
    [ $status -eq 0 ] || echo "(ended with status $status)"
done <"$folder/sources/$page.list" >"$actual"
diff -u "$folder/sources/$page.expected" "$actual"
