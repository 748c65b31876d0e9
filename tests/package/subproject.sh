#!/bin/sh
# usage: subproject.sh CMAKE BUILD PREFIX EXPECTED [EMULATOR...]
#
# Runs the client of the project in BUILD. Then installs it with the parts of mensor that it needs, and
# runs it there. LD_LIBRARY_PATH is not set.
set -eu
cmake=$1 build=$2 prefix=$3 expected=$4
shift 4
here=$(dirname "$0")
unset LD_LIBRARY_PATH

"$here/prints.sh" "$expected" "$@" "$build/client"
rm -rf "$prefix"
# The project's own part, and the library that its client needs. The others are not built.
for component in client libmensor1; do
    "$cmake" --install "$build" --prefix "$prefix" --component $component > "$build/install.log"
done
"$here/prints.sh" "$expected" "$@" "$prefix/bin/client"
