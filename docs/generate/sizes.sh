#!/bin/sh
# usage: sizes.sh PACKAGES README
#
# Writes the sizes of the libraries in the Debian packages of the folder PACKAGES, for amd64 and armhf,
# into the table between the marks of README.
set -eu
packages=$1 readme=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# size PACKAGE ARCHITECTURE: prints the size of the library in the package, in kB.
size() {
    rm -rf "$work/root"
    dpkg-deb -x "$(echo "$packages/$1"_*_"$2.deb")" "$work/root"
    find "$work/root/usr/lib" -name '*.so.*' -type f -printf '%s\n' |
        awk '{ printf "%.0f kB\n", $1 / 1000 }'
}

{
    echo '| Stripped | x86-64 | 32-bit ARM |'
    echo '|---|---:|---:|'
    for deb in "$packages"/libmensor*[0-9]_*_amd64.deb; do
        package=$(dpkg-deb -f "$deb" Package)
        soname=$(dpkg-deb -c "$deb" | sed -n 's,.*/\(libmensor[^/]*\.so\.[0-9]*\) -> .*,\1,p')
        echo "| \`$soname\` | $(size "$package" amd64) | $(size "$package" armhf) |"
    done
} > "$work/table"
awk -v table="$work/table" '
    $0 == "<!-- /sizes -->" { skipping = 0 }
    !skipping { print }
    $0 == "<!-- sizes -->" { while ((getline line < table) > 0) print line; skipping = 1 }
' "$readme" > "$work/readme"
cp "$work/readme" "$readme"
