#!/bin/sh
# usage: hardening.sh READELF OBJDUMP NM FILE...
#
# Checks that each FILE, a library or a program, is hardened, and names each one that is not:
#
# - The tables of addresses are read-only before main() (RELRO, and all names bound at load).
# - The stack is not executable, and functions check it.
# - A program is position independent.
# - On x86, every exported function begins with an instruction at which an indirect jump may land.
#
# At least one FILE must call a function of the C library that checks the size of its buffer. Not every
# file has a call of that kind.
set -eu
readelf=$1 objdump=$2 nm=$3
shift 3
failed=0
fail() {
    echo "$*"
    failed=1
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fortified=
for file; do
    dynamic=$("$readelf" -dW "$file")
    headers=$("$readelf" -hlW "$file")
    names=$("$nm" -D "$file")
    case $headers in *GNU_RELRO*) ;; *) fail "$file: no RELRO" ;; esac
    case $dynamic in *BIND_NOW* | *'Flags: NOW'*) ;; *) fail "$file: names are not bound at load" ;; esac
    case $headers in *'EXEC (Executable'*) fail "$file: not position independent" ;; esac
    echo "$headers" | grep GNU_STACK | grep -q RWE && fail "$file: the stack is executable"
    case $names in *__stack_chk_fail*) ;; *) fail "$file: the stack is not checked" ;; esac
    case $names in *_chk@GLIBC*) fortified=yes ;; esac

    case $headers in
        *X86-64*)
            "$nm" -D --defined-only "$file" | sed -n 's/^0*\([0-9a-f]*\) [TWi] .*/\1/p' |
                sort -u > "$work/exported"
            "$objdump" -d --no-show-raw-insn "$file" |
                sed -n 's/^ *\([0-9a-f]*\):[[:space:]]*endbr64.*/\1/p' | sort -u > "$work/landings"
            open=$(comm -23 "$work/exported" "$work/landings" | wc -l)
            [ "$open" -eq 0 ] || fail "$file: $open exported functions do not begin with endbr64" ;;
    esac
done
[ -n "$fortified" ] || fail "no file checks the sizes of buffers"
exit $failed
