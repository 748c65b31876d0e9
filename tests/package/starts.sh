#!/bin/sh
# usage: starts.sh STAGE
#
# The tree installed in STAGE works there, and moved elsewhere, without further steps: the tool, and the
# libraries, which find each other.
set -eu
stage=$1
unset LD_LIBRARY_PATH
moved=$stage-moved

works() {
    [ "$("$1/bin/mensor" convert "2.5 km" m)" = "2.5 km = 2500 m" ] || { echo "no tool in $1"; exit 1; }
    for library in "$1"/lib/libmensor*.so; do
        found=$(ldd "$library")
        case $found in *"not found"*) echo "$library: $found"; exit 1 ;; esac
    done
}
works "$stage"
rm -rf "$moved"
cp -a "$stage" "$moved"
mv "$stage" "$stage-away"
(works "$moved") && status=0 || status=$?
mv "$stage-away" "$stage"
exit $status
