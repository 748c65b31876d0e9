#!/bin/bash
# Checks locks.pml with spin: that it quotes Unit.cpp as it is, that it has no fault, and that a deadlock
# is found in the order of locks that is its control.
#
# usage: check.sh SOURCE_FOLDER BUILD_FOLDER
set -euo pipefail
source_dir=$(cd "$1" && pwd -P)
model=$source_dir/tests/model/locks.pml source=$source_dir/src/mensor/Unit.cpp
mkdir -p "$2" && cd "$2"

fail() { echo "tests/model: $*"; exit 1; }

lines=$'\n'$(sed 's/^ *//' "$source")$'\n' quoted="" count=0
while IFS= read -r line; do
    if [[ $line =~ ^\ *//=\ *(.*)$ ]]; then
        quoted+=${BASH_REMATCH[1]}$'\n' count=$((count + 1))
    elif [ -n "$quoted" ]; then
        [[ $lines == *$'\n'"$quoted"* ]] || fail "locks.pml models what Unit.cpp has no more:"$'\n'"$quoted"
        quoted=""
    fi
done <"$model"
[ $count -gt 0 ] || fail "locks.pml quotes nothing of Unit.cpp"

# try NAME [OPTION...]: what spin says of the model.
try() {
    local folder=$1
    shift
    rm -rf "$folder" && mkdir "$folder"
    (cd "$folder" && spin "$@" -a "$model" && gcc -O2 -DSAFETY -o pan pan.c && ./pan -m100000)
}
faults=$(try new 2>&1) || fail "$faults"
grep -q 'errors: 0$' <<<"$faults" || fail "a fault:"$'\n'"$faults"
! grep -q 'max search depth too small' <<<"$faults" || fail "not all was tried:"$'\n'"$faults"
deadlock=$(try old -DOLD_ORDER 2>&1) || true
grep -q 'invalid end state' <<<"$deadlock" || fail "no deadlock in the control:"$'\n'"$deadlock"
