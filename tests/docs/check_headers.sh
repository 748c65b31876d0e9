#!/bin/sh
# Checks the name and the first line of every header. A name in CamelCase stands for a class, an enumeration or a
# namespace; a header with a lower-case name declares functions and constants only.
#
# usage: check_headers.sh SOURCE_FOLDER
cd "$1" || exit 1
find src tools tests benchmarks fuzz -name '*.h' -o -name '*.h.in' | grep -v /tinyutf8/ | sort | xargs awk '
# clang-format puts a declaration of a namespace at the start of its line, and indents those of a class.
function settle() {
    if (path == "") return
    if (name ~ /^[A-Z]/ && !types) complain("declares no class, so its name should be in lower case")
    # The class of utf8_string.h has a lower-case name. mensor_global.h has the prefixes beside its functions.
    if (name ~ /^[a-z]/ && types && !isNamed && name != "mensor_global") complain("declares " type ", so its name should be in CamelCase")
}
function complain(what) {
    print path ": " what
    status = 1
}
FNR == 1 {
    settle()
    path = FILENAME
    file = path
    sub(/.*\//, "", file)
    sub(/\.in$/, "", file)
    name = file
    sub(/\.h$/, "", name)
    types = isNamed = 0
    if (index($0, "// " file ": ") != 1) complain("does not begin with // " file ": PURPOSE")
}
/^(class|struct|enum|union|namespace) / && !/;/ || /^using [a-z]+::C[A-Za-z]+;/ {
    type = $0
    sub(/ (final|:|\{).*/, "", type)
    sub(/;$/, "", type)
    sub(/.*[ :]/, "", type)
    if ($1 == "namespace" && type != name) next
    types++
    isNamed = isNamed || type == name
}
END {
    settle()
    exit status
}
'
