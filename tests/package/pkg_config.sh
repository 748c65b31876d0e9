#!/bin/sh
# usage: pkg_config.sh LIBDIR WORK EXPECTED "COMPILER AND FLAGS" [EMULATOR...]
#
# Compiles the client with the flags of pkg-config for the mensor installed in LIBDIR, which is not the
# folder it was configured for, and compares the output.
set -eu
libdir=$1 work=$2 expected=$3 compiler=$4
shift 4
here=$(dirname "$0")

export PKG_CONFIG_PATH="$libdir/pkgconfig"
[ "$(pkg-config --variable=libdir mensor)" -ef "$libdir" ] ||
    { echo "mensor.pc names another folder: $(pkg-config --variable=libdir mensor)"; exit 1; }
pkg-config --exists 'mensor >= 1 mensor < 2' 'mensor-checked >= 1' 'mensor-codes >= 1'

mkdir -p "$work"
# shellcheck disable=SC2046,SC2086  # several words each
$compiler -std=c++17 "$here/client/client.cpp" -o "$work/client" \
    $(pkg-config --cflags --libs mensor)
LD_LIBRARY_PATH=$libdir "$here/prints.sh" "$expected" "$@" "$work/client"

# shellcheck disable=SC2046,SC2086  # several words each
$compiler -std=c++17 "$here/client/checked_client.cpp" -o "$work/checked_client" \
    $(pkg-config --cflags --libs mensor-checked)
LD_LIBRARY_PATH=$libdir "$here/prints.sh" "$here/client/checked_client.expected" "$@" \
    "$work/checked_client"

# shellcheck disable=SC2046,SC2086  # several words each
$compiler -std=c++17 "$here/client/codes_client.cpp" -o "$work/codes_client" \
    $(pkg-config --cflags --libs mensor-codes)
LD_LIBRARY_PATH=$libdir "$here/prints.sh" "$here/client/codes_client.expected" "$@" \
    "$work/codes_client"
