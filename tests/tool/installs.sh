#!/bin/bash
# usage: installs.sh CMAKE BUILD STAGE BINDIR MANDIR DATADIR
#
# The component mensor-tools is the program, its manual and its completion, and nothing else.
set -eu
rm -rf "$3"
"$1" --install "$2" --component mensor-tools --prefix "$3" > /dev/null
expected="$4/mensor
$5/man1/mensor.1
$6/bash-completion/completions/mensor"
installed=$(cd "$3" && find . -type f | sed 's|^\./||')
diff <(sort <<< "$expected") <(sort <<< "$installed")
[ -x "$3/$4/mensor" ]
