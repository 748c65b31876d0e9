#!/bin/sh
# usage: starts.sh CMAKE BUILD STAGE LIBDIR [EMULATOR...]
#
# Installs everything in STAGE and moves it. Tests that it works without further steps: the tool starts, and the
# libraries find each other.
set -eu
cmake=$1 build=$2 stage=$3 libdir=$4
shift 4
unset LD_LIBRARY_PATH

works() {
    prefix=$1
    shift
    [ "$("$@" "$prefix/bin/mensor" convert "2.5 km" m)" = "2.5 km = 2500 m" ] ||
        { echo "the tool does not work in $prefix"; exit 1; }
    for library in "$prefix/$libdir"/libmensor*.so; do
        found=$(ldd "$library")
        case $found in *"not found"*) echo "$library: $found"; exit 1 ;; esac
    done
    # They must not be the libraries of the build, which still exist.
    ldd "$prefix/bin/mensor" | grep libmensor | grep -vF "$prefix" && exit 1
    true
}
rm -rf "$stage" "$stage-moved"
"$cmake" --install "$build" --prefix "$stage" > /dev/null
works "$stage" "$@"
mv "$stage" "$stage-moved"
works "$stage-moved" "$@"
