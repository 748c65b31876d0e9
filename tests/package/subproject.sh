#!/bin/sh
# usage: subproject.sh CMAKE BUILD PREFIX EXPECTED [EMULATOR...]
#
# Runs the client of the project built in BUILD there, and where it is installed with what it needs of
# mensor: no environment says where the library is.
set -eu
cmake=$1 build=$2 prefix=$3 expected=$4
shift 4
here=$(dirname "$0")
unset LD_LIBRARY_PATH

"$here/prints.sh" "$expected" "$@" "$build/client"
rm -rf "$prefix"
# The project's own part, and the package of the library that its client needs; the others are not built.
for component in client libmensor1; do
    "$cmake" --install "$build" --prefix "$prefix" --component $component > "$build/install.log"
done
"$here/prints.sh" "$expected" "$@" "$prefix/bin/client"
