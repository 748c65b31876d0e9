#!/bin/bash
# usage: pipe.sh COMMAND...    COMMAND is mensor.
#
# Tests that each line of a pipe is answered at once, and that a long pipe shows its progress on a terminal.
set -u
export MENSOR_COMMAND
MENSOR_COMMAND=$(printf '%q ' "$@")
failed=0
fail() { echo "FAILED: $1"; failed=1; }

# Reads the answer to a line before it writes the next line.
coproc ANSWERS { "$@" convert - m; }
echo "1 km" >&"${ANSWERS[1]}"
read -r -t 60 -u "${ANSWERS[0]}" answer && [ "$answer" = "1 km = 1000 m" ] ||
    fail "while the pipe was open, the answer to a line was \"${answer-}\""
eval "exec ${ANSWERS[1]}>&-"
wait

slowly='(echo 1 km; sleep 1.5; echo x; sleep 1.5; echo 2 km)'
on_a_terminal() { script -qec "bash -c '$1'" /dev/null < /dev/null; }

# If the program starts slowly, the progress appears with the third line.
shown=$(on_a_terminal "$slowly | $MENSOR_COMMAND convert - m > /dev/null")
[[ $shown == *$'\r\e[K'[23]' lines, 1 refused'* ]] || fail "no progress is shown on a terminal: $(printf %q "$shown")"
[[ $shown == *$'\r\e[K' ]] || fail "the progress is not erased at the end: $(printf %q "$shown")"

shown=$(on_a_terminal "$slowly | $MENSOR_COMMAND convert - m --quiet > /dev/null")
[[ $shown != *lines* ]] || fail "progress is shown despite --quiet: $(printf %q "$shown")"

shown=$(on_a_terminal "$slowly | $MENSOR_COMMAND convert - m")
[[ $shown != *lines,* ]] || fail "progress is shown between results on the terminal: $(printf %q "$shown")"

shown=$(bash -c "$slowly | $MENSOR_COMMAND convert - m" 2>&1)
[[ $shown != *$'\e'* ]] || fail "progress is shown without a terminal: $(printf %q "$shown")"

# The output waits until something reads it, so the conversion of the file takes long enough to show its progress.
numbers=$(mktemp)
seq -f '%g km' 20000 > "$numbers"
shown=$(on_a_terminal "$MENSOR_COMMAND convert - m < $numbers | (sleep 1.5; cat > /dev/null)")
rm "$numbers"
[[ $shown =~ $'\r\e[K'([0-9]+)' lines, 0 refused, '([0-9]+)' %' ]] ||
    fail "no percentage is shown for a file: $(printf %q "$shown")"
percent=$((BASH_REMATCH[1] * 100 / 20000))
[ "$((BASH_REMATCH[2] - percent))" -le 3 ] || fail "$percent % of the lines are shown as ${BASH_REMATCH[2]} %"

exit $failed
