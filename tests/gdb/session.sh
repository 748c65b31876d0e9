#!/bin/sh
# usage: session.sh ROOT TRIPLET WORK COMPILER
#
# Compiles debuggee.cpp against the packages unpacked in ROOT, prints its variables with gdb, and compares
# the output. The library is stripped. It does so four times: in the stopped process and in its core file,
# where gdb finds the printers by their installed path; and with printers loaded by hand, before the program
# runs and while it is stopped.
set -eu
root=$1 triplet=$2 work=$3 compiler=$4
here=$(dirname "$0")
libdir=$root/usr/lib/$triplet

rm -rf "$work"
mkdir -p "$work"
$compiler -std=c++17 -g -O0 "$here/debuggee.cpp" -o "$work/debuggee" \
    -I"$root/usr/include" -L"$libdir" -lmensor -Wl,-rpath,"$libdir"

# gdb looks for printers in <folder of printers>/<path of the library>. Here the library is below ROOT, so a
# link makes the folder of the printers appear below that path.
mkdir -p "$work/printers$(dirname "$root")"
ln -s "$root/usr/share/gdb/auto-load" "$work/printers$root"

variables="metre newton kilometre celsius speed flow mile perMile root one none own
    toMetre toKelvin chain same missing distance third text power"
for variable in $variables; do
    printf 'printf "%s = "\noutput %s\necho \\n\n' "$variable" "$variable"
done > "$work/look"

session() {
    LC_ALL=C.UTF-8 gdb -nx -batch -iex "set auto-load safe-path $root:$work:/usr" \
        -iex "set auto-load scripts-directory $work/printers:/usr/share/gdb/auto-load" \
        -iex 'set debuginfod enabled off' "$@" 2>&1
}

session -ex 'break stop' -ex run -ex 'echo FRAME\n' -ex 'info args' \
    -ex 'up' -ex 'echo BEGIN\n' -x "$work/look" -ex 'echo END\n' \
    -ex "generate-core-file $work/core" -ex kill "$work/debuggee" > "$work/process.log" ||
    { cat "$work/process.log"; exit 1; }
# Loads the printers by hand.
script=$(echo "$root"/usr/share/gdb/auto-load/usr/lib/"$triplet"/libmensor.so.*-gdb.py)
by_hand() {
    LC_ALL=C.UTF-8 gdb -nx -batch -iex 'set auto-load python-scripts off' \
        -iex 'set debuginfod enabled off' "$@" -ex 'up' -ex 'echo BEGIN\n' -x "$work/look" \
        -ex 'echo END\n' "$work/debuggee" 2>&1
}
by_hand -ex "source $script" -ex 'break stop' -ex run > "$work/before.log"
by_hand -ex 'break stop' -ex run -ex "source $script" > "$work/after.log"

# The printers refuse a library of another version.
session -ex 'break stop' -ex run -ex up -ex "set {unsigned long} &'mensor::debugLayout' = 99" \
    -ex 'output metre' "$work/debuggee" > "$work/version.log"
grep -q "debug layout is version 99, the printers know version 1" "$work/version.log" ||
    { tail -n 5 "$work/version.log"; exit 1; }

session -ex 'frame function main' -ex 'echo BEGIN\n' -x "$work/look" -ex 'echo END\n' \
    "$work/debuggee" "$work/core" > "$work/core.log" || { cat "$work/core.log"; exit 1; }

shown() { sed -n '/^BEGIN$/,/^END$/p' "$1" | sed '1d;$d'; }
{
    sed -n '/^FRAME$/,/^#1/p' "$work/process.log" | grep ' = '
    shown "$work/process.log"
} | diff -u "$here/session.expected" - || { tail -n 20 "$work/process.log"; exit 1; }
shown "$work/process.log" > "$work/process.shown"
shown "$work/core.log" | diff -u "$work/process.shown" -
shown "$work/before.log" | diff -u "$work/process.shown" -
shown "$work/after.log" | diff -u "$work/process.shown" -
