#!/bin/bash
# usage: completion.sh COMPLETION MANUAL COMMAND...    COMMAND is mensor.
#
# Tests that Bash completes commands, options, packs and units, and that the completion, the manual and the help
# have the same options.
set -u
. "$1"
manual=$2
shift 2
failed=0
fail() { echo "FAILED: $1"; failed=1; }
mensor() { "$program" "$@"; }
program=$(mktemp)
trap 'rm -f "$program"' EXIT
{ echo '#!/bin/sh'; printf "exec"; printf " '%s'" "$@"; echo ' "$@"'; } > "$program"
chmod +x "$program"

# Prints the completions of the last word.
completed() {
    COMP_WORDS=(mensor "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _mensor
    echo "${COMPREPLY[*]}"
}
expect() {
    local expected=$1
    shift
    local got
    got=$(completed "$@")
    [ "$got" = "$expected" ] || fail "mensor $* is completed to \"$got\" instead of \"$expected\""
}

expect "convert explain list audit code" ""
expect "explain" ex
expect "--differences --dimensionless" convert --di
expect "ucum" convert --from uc
expect "unece" code --to un
expect "customary counting" convert --pack c
expect "customary,offsets" list --pack customary,o
expect "packs compatible" list ""
expect "compatible" list c
expect "min" convert "1 h" mi
expect "mi min" convert --pack customary "1 h" mi
expect "kat" list compatible kat
expect "" convert "1 h" xyzzy

options=$(mensor --help | grep -o -e '--[a-z]*' | sort -u)
for option in $options; do
    expect "$option" "$option"
    grep -qF -e "${option//-/\\-}" "$manual" || fail "the manual does not name $option"
done
packs=$(mensor list packs | sed 's/ .*//')
for pack in $packs; do
    grep -qwF -e "$pack" "$manual" || fail "the manual does not name the pack $pack"
done
[ "$(wc -w <<< "$options $packs")" -ge 15 ] || fail "the help lists too few options and packs"
exit $failed
