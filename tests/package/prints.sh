#!/bin/sh
# usage: prints.sh EXPECTED COMMAND...: checks that COMMAND succeeds and prints the contents of the file EXPECTED.
set -eu
expected=$1
shift
output=$("$@")
printf '%s\n' "$output" | diff -u "$expected" -
