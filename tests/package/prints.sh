#!/bin/sh
# usage: prints.sh EXPECTED COMMAND...: COMMAND succeeds and prints what the file EXPECTED holds.
set -eu
expected=$1
shift
output=$("$@")
printf '%s\n' "$output" | diff -u "$expected" -
