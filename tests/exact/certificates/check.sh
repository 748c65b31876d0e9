#!/bin/bash
# usage: check.sh COMMAND...    COMMAND is print_certificates.
#
# Tests that check.py accepts every certificate and refuses every spoiled one.
set -u
here=$(dirname "$0")
failed=0
fail() { echo "FAILED: $1"; failed=1; }
check() { python3 "$here/check.py"; }

checked=$("$@" | check) || fail "a certificate is refused"
echo "$checked"
[ "${checked%% *}" -gt 2000 ] || fail "too few certificates"

certificate=$("$@" °F °C)
check <<<"$certificate" || fail "the certificate of °F in °C is refused"
spoiled=0
while IFS='|' read -r right wrong; do
    [[ $certificate == *"$right"* ]] || fail "the certificate has no $right: $certificate"
    ! check <<<"${certificate/"$right"/$wrong}" >/dev/null 2>&1 || fail "a certificate with $wrong instead of $right is accepted"
    spoiled=$((spoiled + 1))
done <<'END'
"numerator": "5"|"numerator": "6"
"denominator": "9"|"denominator": "8"
"negative": true|"negative": false
"root": 1|"root": 2
"pi": "0"|"pi": "1"
"text": "5/9"|"text": "5/8"
"text": "-160/9"|"text": "-160/7"
"definition": "5/9 K, offset 459.67"|"definition": "5/9 K, offset 459.68"
"definition": "5/9 K, offset 459.67"|"definition": "5/8 K, offset 459.67"
"definition": "K, offset 273.15"|"definition": "°F, offset 273.15"
"units": "K"|"units": "m"
"keepsMarks": true|"keepsMarks": false
"from": "°F"|"from": "K"
{"name": "K"|{"name": "R"
END
[ "$spoiled" = 14 ] || fail "not all spoiled certificates were tried"
exit $failed
