#!/bin/sh
# Starts a program many times. Each start must succeed within a minute and print nothing.
#
# usage: starts.sh COUNT ALL COMMAND...
#   COUNT times, or ALL times if MENSOR_TESTS_THOROUGH is set
count=${MENSOR_TESTS_THOROUGH:+$2}
count=${count:-$1}
shift 2
for start in $(seq "$count"); do
    printed=$(timeout -k 5 60 "$@" 2>&1)
    status=$?
    if [ $status -ne 0 ] || [ -n "$printed" ]; then
        echo "start $start of $count: status $status (124: it hung): $printed"
        exit 1
    fi
done
