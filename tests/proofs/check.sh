#!/bin/bash
# Proves the bounds that the fast conversions need, with gappa. The line "control" of each script names
# a change that makes its bound too small. gappa must not prove the changed script.
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
    grep -q 'some properties were not satisfied' <<<"$said" || fail "the control of $script fails for another reason:"$'\n'"$said"
done
