#!/bin/sh
# usage: pkg_config.sh LIBDIR WORK "COMPILER AND FLAGS" [EMULATOR...]
#
# Compiles a client of each library with the flags of pkg-config and compares its output. mensor is
# installed in LIBDIR, which is not the folder for which it was configured.
set -eu
libdir=$1 work=$2 compiler=$3
shift 3
here=$(dirname "$0")

export PKG_CONFIG_PATH="$libdir/pkgconfig"
[ "$(pkg-config --variable=libdir mensor)" -ef "$libdir" ] ||
    { echo "mensor.pc names the wrong folder: $(pkg-config --variable=libdir mensor)"; exit 1; }
pkg-config --exists 'mensor >= 1 mensor < 2' 'mensor-exact >= 1' 'mensor-checked >= 1' 'mensor-codes >= 1'

mkdir -p "$work"
for package in mensor mensor-exact mensor-checked mensor-codes; do
    case $package in
        mensor) client=client ;;
        *) client=${package#mensor-}_client ;;
    esac
    # shellcheck disable=SC2046,SC2086  # several words each
    $compiler -std=c++17 "$here/client/$client.cpp" -o "$work/$client" \
        $(pkg-config --cflags --libs "$package")
    LD_LIBRARY_PATH=$libdir "$here/prints.sh" "$here/client/$client.expected" "$@" "$work/$client"
done
