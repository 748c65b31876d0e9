#!/bin/sh
# usage: abi.sh compare|update FILE names NM LIBRARY
#        abi.sh compare|update FILE sizes COMMAND...
#
# What clients of the library are compiled against: the names it exports, sorted and demangled, tables
# of virtual functions with their size; and the sizes that COMMAND prints. A difference from FILE is a
# change of the ABI: decide about it, then let "update" (target update_abi) write FILE anew.
set -eu
what=$1 file=$2 kind=$3
shift 3
case $kind in
    names)
        found=$("$1" -DCS --defined-only "$2" | sed -E -e 's/@.*//' \
            -e 's/^[0-9a-f]+ 0*([0-9a-f]+) ([VD]) (vtable .*)/\2 \3, 0x\1 bytes/' \
            -e 's/^[0-9a-f]+ ([0-9a-f]+ )?([A-Za-z] )/\2/' | LC_ALL=C sort -u) ;;
    sizes)
        found=$("$@") ;;
esac
case $what in
    update) printf '%s\n' "$found" > "$file" ;;
    compare) printf '%s\n' "$found" | diff -u "$file" - ;;
esac
