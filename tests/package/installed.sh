#!/bin/sh
# usage: installed.sh DEBS ROOT ARCHITECTURE TRIPLET CLIENT "COMPILER AND FLAGS" [EMULATOR...]
#
# Unpacks the packages in DEBS into the new folder ROOT, checks their descriptions, runs the tools, and
# builds and runs the client there.
set -eu
debs=$1 root=$2 architecture=$3 triplet=$4 work=$5 compiler=$6
shift 6
here=$(dirname "$0")
fail() { echo "$*"; exit 1; }

rm -rf "$root"
mkdir -p "$root"
set -- "$@" --
for package in libmensor1 libmensor1-log4cplus libmensor-checked1 libmensor-exact1 libmensor-codes1 libmensor-dev mensor-tools; do
    deb=$(echo "$debs/${package}"_*_"$architecture.deb")
    [ -f "$deb" ] || fail "no $deb"
    [ "$(dpkg-deb -f "$deb" Architecture)" = "$architecture" ] || fail "$deb: wrong architecture"
    dpkg-deb -x "$deb" "$root"
    doc=$root/usr/share/doc/$package
    grep -q '^License: Expat' "$doc/copyright" || fail "$package: no licence"
    gzip -dc "$doc/changelog.Debian.gz" | grep -q "^mensor ($(dpkg-deb -f "$deb" Version))" ||
        fail "$package: the change log has a different version"
done
says() { # PACKAGE FIELD PATTERN
    dpkg-deb -f "$(echo "$debs/$1"_*.deb)" "$2" | grep -q -e "$3" || fail "$1: $2 is not $3"
}
says libmensor1 Multi-Arch '^same$'
says libmensor-dev Multi-Arch '^same$'
says libmensor1 Depends 'libstdc++6'
(says libmensor1 Depends log4cplus) >/dev/null && fail "libmensor1 depends on log4cplus"
says libmensor1-log4cplus Depends 'libmensor1 (=.*liblog4cplus-2'
says libmensor1-log4cplus Multi-Arch '^same$'
says libmensor1 Suggests 'libmensor1-log4cplus (='
says libmensor1 Depends 'libc6'
says libmensor-checked1 Depends 'libmensor1 (=.*libmensor-exact1 (='
says libmensor-codes1 Depends 'libmensor-exact1 (='
says libmensor-dev Depends 'libmensor1 (=.*libmensor-checked1 (='
says mensor-tools Depends 'libmensor1 (>='

libdir=$root/usr/lib/$triplet
[ -f "$libdir/libmensor.so.1" ] || fail "the library is not in $libdir"
[ -f "$libdir/mensor/log4cplus.so" ] || fail "the module is not in $libdir/mensor"
for file in "$libdir"/libmensor*.so.?.* "$root/usr/bin/mensor"; do
    readelf -dW "$file" | grep -E 'RPATH|RUNPATH' && fail "$file has a run path"
done
while [ "$1" != -- ]; do
    emulator="${emulator-} $1"
    shift
done
converted=$(LD_LIBRARY_PATH=$libdir ${emulator-} "$root/usr/bin/mensor" convert "2.5 km" m)
[ "$converted" = "2.5 km = 2500 m" ] || fail "mensor prints $converted"
gzip -dc "$root/usr/share/man/man1/mensor.1.gz" | grep -qi "^\.TH mensor 1" ||
    fail "no manual page of mensor"

exec "$here/pkg_config.sh" "$libdir" "$work" "$compiler" ${emulator-}
