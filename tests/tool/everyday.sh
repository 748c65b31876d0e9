#!/bin/bash
# usage: everyday.sh TABLE PACKS COMMAND...    COMMAND is mensor, TABLE has a unit before its first tab.
#
# Tests that no pack collides with an everyday unit: the same texts are refused with all packs and without them.
set -eu
table=$1 packs=$2
shift 2
units=$(grep -v '^#' "$table" | cut -f1)
refused() { "$@" 2>&1 <<< "$units" | grep '^mensor' || true; }
plain=$(refused "$@" audit -)
[ "$(wc -l <<< "$units")" -gt 500 ] && [ -n "$plain" ]
diff <(echo "$plain") <(refused "$@" audit --pack "$packs" -)
