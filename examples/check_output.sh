#!/bin/sh
# usage: check_output.sh RECORD NAME COMMAND...
#
# RECORD is a session with the program NAME, which COMMAND runs. A line that begins with "$ " is a
# shell command; below it stand what the command writes to standard output, what it writes to
# standard error behind "! ", and its status behind "? " unless that is 0.
#
# Runs every command of RECORD again; prints the difference and fails if the session is another.
# To make a record anew: write the "$ " lines and apply the difference that is printed.
set -eu
record=$1 name=$2
shift 2

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
{
    echo '#!/bin/sh'
    printf 'exec'
    printf " '%s'" "$@"
    echo ' "$@"'
} > "$work/$name"
chmod +x "$work/$name"
PATH=$work:$PATH

grep '^\$ ' "$record" | while IFS= read -r line; do
    printf '%s\n' "$line"
    status=0
    sh -c "${line#??}" < /dev/null > "$work/out" 2> "$work/err" || status=$?
    cat "$work/out"
    sed 's/^/! /' "$work/err"
    [ $status = 0 ] || echo "? $status"
done > "$work/session"

[ -s "$work/session" ] || { echo "$record holds no command"; exit 1; }
diff -u "$record" "$work/session"
