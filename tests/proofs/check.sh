#!/bin/bash
# Proves the bounds that the fast exact conversions rest on, with gappa. Each script names a change of itself
# that makes the bound too small. Changed so, it must not be proved.
#
# usage: check.sh
set -euo pipefail
cd "$(dirname "$0")"

fail() { echo "tests/proofs: $*"; exit 1; }

for script in *.gappa; do
    control=$(sed -n 's/^# control: //p' "$script")
    changed=$(sed "/^#/!$control" "$script")
    [ "$changed" != "$(cat "$script")" ] || fail "the control of $script changes nothing"
    said=$(gappa -Eno-auto-dichotomy "$script" 2>&1) || fail "$script is not proved:"$'\n'"$said"
    if said=$(gappa -Eno-auto-dichotomy <<<"$changed" 2>&1); then
        fail "the control of $script is proved, too"
    fi
    grep -q 'some properties were not satisfied' <<<"$said" || fail "the control of $script:"$'\n'"$said"
done
