#!/bin/bash
# usage: installs.sh CMAKE BUILD STAGE BINDIR MANDIR DATADIR
#
# Tests that the component mensor-tools installs the program, its manual and its completion.
set -eu
rm -rf "$3"
"$1" --install "$2" --component mensor-tools --prefix "$3" > /dev/null
[ -x "$3/$4/mensor" ] && [ -n "$(find "$3/$5/man1" -name "mensor.1*" -size +0)" ] &&
    [ -s "$3/$6/bash-completion/completions/mensor" ]
