#!/bin/bash
# Checks locks.pml with spin: the sources still contain the lines that it quotes, spin finds no fault, and spin
# finds the deadlock in the control, which takes the locks in another order.
#
# usage: check.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
source_dir=$(cd "$1" && pwd -P)
model=$source_dir/tests/model/locks.pml
sources=("$source_dir"/src/mensor/{Unit.cpp,UnitAlgebra.h})
mkdir -p "$2" && cd "$2"

fail() { echo "tests/model: $*"; exit 1; }

lines=$'\n'$(sed 's/^ *//' "${sources[@]}")$'\n' quoted="" count=0
while IFS= read -r line; do
    if [[ $line =~ ^\ *//=\ *(.*)$ ]]; then
        quoted+=${BASH_REMATCH[1]}$'\n' count=$((count + 1))
    elif [ -n "$quoted" ]; then
        [[ $lines == *$'\n'"$quoted"* ]] || fail "locks.pml quotes lines that the sources do not contain:"$'\n'"$quoted"
        quoted=""
    fi
done <"$model"
[ $count -gt 0 ] || fail "locks.pml quotes nothing"

# try NAME [OPTION...]: prints the verdict of spin on the model.
try() {
    local folder=$1
    shift
    rm -rf "$folder" && mkdir "$folder"
    (cd "$folder" && spin "$@" -a "$model" && gcc -O2 -DSAFETY -o pan pan.c && ./pan -m100000)
}
faults=$(try new 2>&1) || fail "$faults"
grep -q 'errors: 0$' <<<"$faults" || fail "a fault:"$'\n'"$faults"
! grep -q 'max search depth too small' <<<"$faults" || fail "the search was not complete:"$'\n'"$faults"
deadlock=$(try old -DOLD_ORDER 2>&1) || true
grep -q 'invalid end state' <<<"$deadlock" || fail "no deadlock in the control:"$'\n'"$deadlock"
