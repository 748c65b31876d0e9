"""Reports what the tests have run, from the counters of one build: see scripts/coverage, which calls this."""

import argparse
import collections
import json
import re
import subprocess
from pathlib import Path

LEAST_LINES, LEAST_BRANCHES = 99, 95

CODE = 0  # the kind of a region that holds code


def export(form, counts, binaries):
    objects = [word for binary in binaries[1:] for word in ("-object", binary)]
    return subprocess.run(["llvm-cov", "export", f"-format={form}", "-instr-profile", counts, binaries[0], *objects],
                          check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout


def lines_of(lcov):
    """How often each line ran: {file: {line: count}}."""
    lines, file = collections.defaultdict(dict), None
    for record in lcov.splitlines():
        if record.startswith("SF:"):
            file = record[3:]
        elif record.startswith("DA:"):
            line, count = record[3:].split(",")[:2]
            lines[file][int(line)] = int(count)
    return lines


def branches_of(functions):
    """How often each condition was true and false: {file: {place: [true, false]}}. All instances of a template
    count together."""
    branches = collections.defaultdict(lambda: collections.defaultdict(lambda: [0, 0]))
    for function in functions:
        for branch in function.get("branches", []):
            place, (isTrue, isFalse, file) = tuple(branch[:4]), branch[4:7]
            counts = branches[function["filenames"][file]][place]
            counts[0] += isTrue
            counts[1] += isFalse
    return branches


def run_by_the_compiler(functions, texts):
    """The lines of the constexpr functions that no program has run: {file: {line}}. The compiler ran them."""
    counts, spans = collections.Counter(), {}
    for function in functions:
        for region in function["regions"]:
            begin, _, end, _, _, file, _, kind = region
            name = function["filenames"][file]
            if file == 0 and kind == CODE and name in texts:
                key = name, *region[:2]  # the first region is the whole body
                counts[key] += function["count"]
                spans[key] = begin, end
                break
    found = collections.defaultdict(set)
    for (name, *_), (begin, end) in ((key, spans[key]) for key, count in counts.items() if count == 0):
        head = begin
        while head > 1 and not re.search(r"[;{}:]\s*(//.*)?$|^\s*(//.*)?$", texts[name][head - 2]):
            head -= 1
        if any(re.search(r"\bconstexpr\b", line) for line in texts[name][head - 1:begin]):
            found[name].update(range(begin, end + 1))
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("source", type=Path)
    parser.add_argument("counts")
    parser.add_argument("folders", help="the folders to report, separated by commas")
    parser.add_argument("binaries", nargs="+")
    arguments = parser.parse_args()

    functions = json.loads(export("text", arguments.counts, arguments.binaries))["data"][0]["functions"]
    lines = lines_of(export("lcov", arguments.counts, arguments.binaries))
    branches = branches_of(functions)
    failed = False
    for folder in arguments.folders.split(","):
        names = sorted(name for name in lines if name.startswith(f"{arguments.source / folder}/"))
        texts = {name: Path(name).read_text().splitlines() for name in names}
        compiled = run_by_the_compiler(functions, texts)
        print(f"{folder}, what no test has run:")
        total, run = collections.Counter(), collections.Counter()
        for name in names:
            missing = []
            for line, count in lines[name].items():
                if line not in compiled[name]:
                    total["lines"] += 1
                    run["lines"] += count > 0
                    missing += [(line, "the line")] if count == 0 else []
            for (line, *_), counts in branches[name].items():
                if line not in compiled[name]:
                    total["branches"] += 2
                    run["branches"] += sum(count > 0 for count in counts)
                    missing += [(line, f"never {truth}") for truth, count in zip(("true", "false"), counts)
                                if count == 0 and lines[name].get(line, 1) > 0]
            for line, what in sorted(missing):
                print(f"  {Path(name).relative_to(arguments.source)}:{line}: {what}: {texts[name][line - 1].strip()}")
        part = {kind: 100 * run[kind] / total[kind] if total[kind] else 100 for kind in ("lines", "branches")}
        print(f"{folder}: {run['lines']} of {total['lines']} lines ({part['lines']:.1f} %), "
              f"{run['branches']} of {total['branches']} branches ({part['branches']:.1f} %)")
        failed = failed or part["lines"] < LEAST_LINES or part["branches"] < LEAST_BRANCHES
    return failed


if __name__ == "__main__":
    raise SystemExit(main())
