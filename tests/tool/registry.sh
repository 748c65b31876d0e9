#!/bin/bash
# usage: registry.sh COMMAND...    COMMAND is mensor.
#
# Tests that only audit and --library load the library with the registry.
set -u
failed=0
fail() { echo "FAILED: $1"; failed=1; }

command=("$@")

# Prints the files of the libraries that the command loads. The loader lists them in debug mode.
files() {
    LD_DEBUG=files "${command[@]}" "$@" 2>&1 < /dev/null |
        sed -n 's|.*calling init: \(/.*/libmensor[a-z_]*\.so[.0-9]*\)$|\1|p' | sort -u
}
loaded() { files "$@" | sed 's|.*/||; s|\.so.*||' | tr '\n' ' '; }

everyday='libmensor_codes libmensor_exact '
while read -r words; do
    eval "got=\$(loaded $words)"
    [ "$got" = "$everyday" ] || fail "mensor $words loads $got"
done <<'END'
--help
convert "2.5 km" m
convert --json --pack customary,offsets "98.6 °F" °C
convert --units units.txt "10 smoot" m
convert "1 xyzzy" m
convert --from unece "5 KMH" m/s
explain km/h
explain --json W/m²/K
explain --ucum "m[H2O]"
list
list compatible Pa
code m³/h
END
for words in 'audit units.txt' 'explain --library km'; do
    # shellcheck disable=SC2086
    got=$(loaded $words)
    [[ $got == *'libmensor '* ]] || fail "mensor $words does not load the registry: $got"
done

# Copies the program and its two libraries. They convert without the registry, and report that they cannot audit.
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# shellcheck disable=SC2046
cp "${command[-1]}" $(files --version) "$folder"
export LD_LIBRARY_PATH=$folder
command[-1]=$folder/$(basename "${command[-1]}")
got=$("${command[@]}" convert "2.5 km" m)
[ "$got" = "2.5 km = 2500 m" ] || fail "without the registry, the answer is \"$got\""
got=$("${command[@]}" audit units.txt 2>&1)
status=$?
[ $status = 2 ] && [[ $got == "mensor: cannot ask the library's registry: $folder/mensor/registry.so: "* ]] ||
    fail "without the registry, an audit ends with $status: $got"
exit $failed
