#!/bin/sh
# Runs every snippet of a page, each in a process of its own, and compares the output with that on the page.
#
# usage: check_page.sh PAGE.list PAGE.expected FOLDER PAGE [EMULATOR...]
list=$1 expected=$2 folder=$3 page=$4
shift 4

actual=$folder/$page.actual
while read -r line kind; do
    echo "--- line $line"
    case $kind in
        program) "$@" "$folder/$page-$line" </dev/null 2>&1 ;;
        function) "$@" "$folder/docs_$page" "$line" </dev/null 2>&1 ;;
    esac
    status=$?
    [ $status -eq 0 ] || echo "(ended with status $status)"
done <"$list" >"$actual"
diff -u "$expected" "$actual"
