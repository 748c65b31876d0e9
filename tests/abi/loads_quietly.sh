#!/bin/sh
# usage: loads_quietly.sh NM LIBRARY
#
# Fails if the library has a constructor that runs at load. LIBRARY must not be stripped, since such
# functions are not exported.
set -eu
names=$("$1" "$2")
printf '%s\n' "$names" | grep -q ' frame_dummy$' || { echo "$2 is stripped"; exit 1; }
if printf '%s\n' "$names" | grep ' _GLOBAL__sub_I_'; then
    exit 1
fi
