#!/bin/sh
# usage: check_output.sh RECORD NAME COMMAND...
#
# RECORD is a session with the program NAME, which COMMAND runs. A line that begins with "$ " is a
# shell command. Below it is the standard output of the command, its
# standard error after "! ", and its status after "? " unless that is 0.
#
# Runs every command of RECORD again. If the output differs, prints the difference and fails.
# To make a new record, write the "$ " lines and apply the printed difference.
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
