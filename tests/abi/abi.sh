#!/bin/sh
# usage: abi.sh compare|update FILE names NM LIBRARY
#        abi.sh compare|update FILE sizes COMMAND...
#
# Compares or writes the binary interface of a library. "names" is its exported names, sorted and
# demangled, with the sizes of tables of virtual functions. All data has the letter D, because the
# optimisation decides whether data is weak or writable. "sizes" is the output of COMMAND. A difference from FILE is a
# change of the ABI. If it is wanted, let "update" (target update_abi) rewrite FILE.
set -eu
what=$1 file=$2 kind=$3
shift 3
case $kind in
    names)
        found=$("$1" -DCS --defined-only "$2" | sed -E -e 's/@.*//' \
            -e 's/^[0-9a-f]+ 0*([0-9a-f]+) ([VDR]) (vtable .*)/\2 \3, 0x\1 bytes/' \
            -e 's/^[0-9a-f]+ ([0-9a-f]+ )?([A-Za-z] )/\2/' -e 's/^[VRB] /D /' | LC_ALL=C sort -u) ;;
    sizes)
        found=$("$@") ;;
esac
case $what in
    update) printf '%s\n' "$found" > "$file" ;;
    compare) printf '%s\n' "$found" | diff -u "$file" - ;;
esac
