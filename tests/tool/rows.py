#!/usr/bin/env python3
# usage: rows.py PAGE COMMAND...    COMMAND is mensor, PAGE is docs/everyday.md.
#
# Tests each row of the tables of everyday texts as a person would: a spelling is read; a trap or a wrong name is
# refused, the refusal names another text, and mensor reads that text.
import json
import re
import subprocess
import sys

page, command = open(sys.argv[1], encoding="utf-8").read(), sys.argv[2:]
packs = ["--pack", "si,customary,us,science,offsets,counting,everyday"]
faults = []


def rows(table):
    part = page.split(f"<!-- {table} -->\n")[1].split(f"<!-- /{table} -->")[0]
    for line in part.splitlines()[2:]:
        for plain, html in re.findall(r"`([^`]*)`|<code>(.*?)</code>", line.split(" | ")[0]):
            yield plain or html


def convert(values):
    """Returns what mensor says to each value: the refusal, or None."""
    run = subprocess.run(command + ["convert", "--json", *packs, "-", "One"], input="\n".join(values) + "\n",
                         capture_output=True, encoding="utf-8", check=False)
    answers = [json.loads(line) for line in run.stdout.splitlines()]
    assert len(answers) == len(values), run.stderr
    return [answer.get("error") for answer in answers]


def quoted(message, token):
    return [text for text in re.findall(r'"([^"]+)"', message) if text != token]


spellings = ["5 " + text for text in rows("spellings")]
for value, refusal in zip(spellings, convert(spellings)):
    if refusal:
        faults.append(f"{value} is refused")

refused = list(rows("traps")) + ["5 " + text if text[0] not in "0123456789" else text for text in rows("refusals")]
offers = []
for value, refusal in zip(refused, convert(refused)):
    if not refusal:
        faults.append(f"{value} is read")
        continue
    offered = refusal["readings"] + [value[:value.find(refusal["token"])] + name for name in refusal["suggestions"]]
    if offered:
        offers += [(value, text, None) for text in offered]
    else:
        named = quoted(refusal["message"], refusal["token"])
        if not named:
            faults.append(f"{value}: nothing to write instead: {refusal['message']}")
        offers.append((value, None, named))

texts = [text or (name if name[0].isdigit() else "5 " + name) for _, text, names in offers for name in names or [None]]
answers = iter(convert(texts))
for value, text, names in offers:
    read = [next(answers) is None for _ in names or [None]]
    if not any(read):
        faults.append(f"{value}: refused, too: {text or names}")

for value in refused[::40]:
    unit = re.sub("^[0-9]+ ?", "", value)
    run = subprocess.run(command + ["explain", *packs, "--", unit], capture_output=True, encoding="utf-8", check=False)
    helps = re.search(r"^(write|known|type) +\S", run.stdout, re.M) or quoted(run.stdout, unit)
    if run.returncode != 1 or not helps:
        faults.append(f"explain {unit}: {run.stdout or run.stderr}")

print("\n".join(faults))
print(f"{len(spellings)} spellings, {len(refused)} refusals, {len(offers)} offers, {len(faults)} faults")
sys.exit(1 if faults or len(refused) < 2000 or len(spellings) < 350 else 0)
