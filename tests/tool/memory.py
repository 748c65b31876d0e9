#!/usr/bin/env python3
"""usage: memory.py COMMAND...    COMMAND is mensor.

A pipe of many distinct texts needs no more memory than a short one: nothing of a line is kept."""
import os
import subprocess
import sys
import threading

UNITS = ["m", "km", "s", "h", "kg", "g", "N", "Pa", "J", "W", "K", "A", "mol", "V", "cd"]
SHORT, LONG = 2000, 42000
if len(sys.argv) > 2 and "MENSOR_TESTS_THOROUGH" not in os.environ:
    LONG = 22000  # The command begins with an emulator, or runs under a sanitizer: both are slow.
MOST_GROWTH = 3000  # kB. A unit of the registry takes more than 0.5 kB, and half of the texts are units.


def text(i):
    """The i-th text: a unit that no other line has, or one that is refused."""
    value, unit = f"{i % 97}.{i % 89}", UNITS[i % len(UNITS)]
    if i % 10 == 0:
        return f"{value} {unit}/{unit}/m"
    if i % 10 == 1:
        return f"{value} {unit})"
    other, third = UNITS[i // 15 % len(UNITS)], UNITS[i // 225 % len(UNITS)]
    return f"{value} {unit}·{other}^{i // 3375 % 90 + 1}/{third}"


def most_memory(lines):
    """The most memory that the program has taken when it has answered so many lines, in kB."""
    # A sanitizer keeps freed memory. That is not memory of the program.
    sanitizer = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"
    program = subprocess.Popen(
        sys.argv[1:] + ["convert", "-", "m/s"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, env=dict(os.environ, ASAN_OPTIONS=sanitizer))

    def write():
        for i in range(lines):
            program.stdin.write((text(i) + "\n").encode())
        program.stdin.write(b"12345 m/s\n")
        program.stdin.flush()

    threading.Thread(target=write).start()
    answers = 0
    for answer in program.stdout:
        answers += answer.startswith(b"mensor: line ") or b" = " in answer
        if answer == b"12345 m/s = 12345 m/s\n":
            break
    with open(f"/proc/{program.pid}/status") as status:
        memory = next(int(line.split()[1]) for line in status if line.startswith("VmHWM:"))
    program.stdin.close()
    assert program.wait() == 1, "no text was refused"
    assert answers == lines + 1, f"{answers} answers to {lines} lines"
    return memory


short, long = most_memory(SHORT), most_memory(LONG)
print(f"{short} kB for {SHORT} lines, {long} kB for {LONG}")
sys.exit(long - short > MOST_GROWTH)
