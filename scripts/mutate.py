"""Makes mutants of the libraries and the tool and runs the tests on them: see scripts/mutate, which calls
this."""

import argparse
import collections
import hashlib
import json
import os
import random
import re
import resource
import signal
import subprocess
import sys
import time
from pathlib import Path

JOBS = str(os.cpu_count())
KEYWORDS = {"if", "for", "while", "switch", "catch", "return", "throw", "sizeof", "alignas", "decltype",
            "noexcept", "static_assert", "defined", "__attribute__", "target", "operator"}
NO_STATEMENT = {"return", "using", "class", "struct", "const", "static", "constexpr", "template",
                "friend", "typedef", "enum", "namespace", "public", "private", "protected", "virtual",
                "explicit", "inline", "extern", "case", "default", "if", "for", "while", "switch",
                "do", "else", "try", "catch", "union", "auto", "alignas", "static_assert", "goto",
                "thread_local", "mutable", "MENSOR_API", "MENSOR_LOCAL"}

# One change of a source: `kind` says what, and [start, end) of the text becomes `new`.
Mutation = collections.namedtuple("Mutation", "source kind start end new")


# Finding mutations.

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<string>(?:u8|[uUL])?"(?:\\.|[^"\\\n])*")
      | (?P<char>(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
      | (?P<number>(?<![\w.])(?:0[xX][\da-fA-F']+|\d(?:[\d.]|'\d)*(?:[eE][-+]?\d+)?)[uUlLfF]*)
      | (?P<directive>(?<=\n)\#[^\n]*)
      | (?P<word>[A-Za-z_]\w*)""",
    re.S | re.X)


def code_of(text):
    """The text with comments, directives and the insides of literals blanked, and its constants."""
    code, constants = list(text), []
    for token in TOKEN.finditer(text):
        if token.lastgroup in ("number", "char") and not text[:token.end()].endswith(") = 0") and \
                not text[:token.end()].endswith(") const = 0"):
            constants.append(token)
        if token.lastgroup in ("comment", "directive"):
            code[token.start():token.end()] = [c if c == "\n" else " " for c in token.group()]
        elif token.lastgroup in ("string", "char"):
            code[token.start() + 1:token.end() - 1] = "_" * (token.end() - token.start() - 2)
    return "".join(code), constants


def closing(code, opening):
    """The position of the bracket that closes the one at `opening`."""
    depth = 0
    for i in range(opening, len(code)):
        if code[i] in "([{":
            depth += 1
        elif code[i] in ")]}":
            depth -= 1
            if depth == 0:
                return i
    return len(code)


def split_arguments(code, begin, end):
    """The spans between the commas of the outermost level in [begin, end)."""
    spans, depth, start = [], 0, begin
    for i in range(begin, end):
        depth += (code[i] in "([{") - (code[i] in ")]}")
        if code[i] == "," and depth == 0:
            spans.append((start, i))
            start = i + 1
    spans.append((start, end))
    trimmed = []
    for start, end in spans:
        part = code[start:end]
        trimmed.append((start + len(part) - len(part.lstrip()), start + len(part.rstrip())))
    return trimmed


def statements(code):
    """The spans of expression statements, and of throw, break, continue and return without a value."""
    found = []
    classes = set(re.findall(r"\b(?:class|struct) (?:MENSOR_API )?(?:\w+::)?(\w+)", code))
    for before in re.finditer(r"(?:[;{}]|\b(?:case\s(?:[^:;{}]|::)+|default):(?!:)|\belse)\s*", code):
        start = before.end()
        if code.count("(", 0, start) != code.count(")", 0, start):
            continue  # the clauses of a for
        head = re.match(r"(?:\+\+|--|\*|\()*([A-Za-z_]\w*)", code[start:start + 200])
        if not head:
            continue
        depth = 0
        for end in range(start, len(code)):
            depth += (code[end] in "([") - (code[end] in ")]")
            if depth < 0 or (depth == 0 and code[end] in ";{}"):
                break
        body = code[start:end]
        if end == len(code) or code[end] != ";" or body.endswith(("= default", "= delete")):
            continue
        isDeclaration = re.match(
            r"[\w:]+(?:<.*?>)?[&*]*(?: const)?[&*]* [&*]*[\w\[\]]+ ?(?:=[^=]|\(|$|\{|,)", body)
        isConstructor = re.match(r"(\w+)\(", body) and head.group(1) in classes
        if body != "return" and head.group(1) != "throw" and (
                head.group(1) in NO_STATEMENT or isDeclaration or isConstructor
                or "operator" in body):
            continue
        found.append((start, end + 1))
    return found


def moved_by_one(literal):
    """Returns a number changed by one in its last place, or the next character."""
    if literal.endswith("'"):
        return f"({literal} + 1)"
    digits = re.match(r"0[xX][\da-fA-F']+|[\d.']+", literal).group()
    suffix = literal[len(digits):]
    if digits[:2] in ("0x", "0X"):
        return f"{int(digits.replace(chr(39), ''), 16) + 1:#x}{suffix}"
    if "." not in digits:
        return str(int(digits.replace("'", "")) + 1) + suffix
    places = len(digits) - digits.index(".") - 1
    scaled = str(int(digits.replace(".", "")) + 1).rjust(places + 1, "0")
    return scaled[:len(scaled) - places] + "." + scaled[len(scaled) - places:] + suffix


REPLACEMENTS = [
    ("comparison changed", r" (==|!=|<=|>=|<|>) ",
     {"==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"], ">=": [">", "<"]}),
    ("operator changed", r" (\+|-|\*|/|%|\^|\+=|-=|\*=|\|=) ",
     {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "^": ["|"], "+=": ["-="], "-=": ["+="],
      "*=": ["/="], "|=": ["="]}),
    ("operator changed", r"(\+\+|--)(?=[A-Za-z_(*])", {"++": ["--"], "--": ["++"]}),
    ("and/or changed", r" (&&|\|\|) ", {"&&": ["||"], "||": ["&&"]}),
    ("sign dropped", r"(?<=[\s(])([-!])(?=[A-Za-z_(])", {"-": [""], "!": [""]}),
    ("branch forced", r" (\?) ", {"?": ["|| true ?", "&& false ?"]}),
    ("truth value changed", r"\b(true|false)\b", {"true": ["false"], "false": ["true"]}),
]


def mutations_of(source, text):
    """All mutations of a source that this program knows, in the order of their places."""
    code, constants = code_of(text)
    found = set()

    def add(kind, start, end, new):
        if text[start:end] != new:
            found.add(Mutation(source, kind, start, end, new))

    for kind, pattern, turned in REPLACEMENTS:
        for match in re.finditer(pattern, code):
            for new in turned[match.group(1)]:
                add(kind, match.start(1), match.end(1), new)
    for token in constants:
        add("constant changed", token.start(), token.end(), moved_by_one(token.group()))
    for match in re.finditer(r"\b(if|while) ?\(", code):
        end = closing(code, match.end() - 1)
        condition = text[match.end():end]
        isDeclaration = re.search(r"[^=!<>]=[^=]", code[match.end():end]) and ";" not in condition
        for truth in ("true", "false") if match.group(1) == "if" else ("false",):
            add("branch forced", match.end(), end, f"{condition}; {truth}" if isDeclaration else truth)
    for match in re.finditer(r"\b([A-Za-z_]\w*)(?:<[\w:]+>)?\(", code):
        if match.group(1) in KEYWORDS:
            continue
        spans = split_arguments(code, match.end(), closing(code, match.end() - 1))
        for (a, b), (c, d) in zip(spans, spans[1:]):
            isDeclaration = re.match(r"(?:const )?[\w:]+(?:<.*>)?[&*]* [&*]*\w+( =.*)?$", code[c:d], re.S)
            if a < b and c < d and not isDeclaration and text[a:b] != text[c:d]:
                add("arguments swapped", a, d, text[c:d] + text[b:c] + text[a:b])
    spans = statements(code)
    for start, end in spans:
        add("statement dropped", start, end, ";" + "\n" * text.count("\n", start, end))
    for (a, b), (c, d) in zip(spans, spans[1:]):
        if not code[b:c].strip() and text[a:b] != text[c:d]:
            add("statements swapped", a, d, text[c:d] + text[b:c] + text[a:b])
    return sorted(found, key=lambda m: (m.start, m.end, m.new))


class Sources:
    """The sources of the libraries and of the tool, by their paths from the root of the tree."""

    def __init__(self, copy):
        self.directory = copy
        paths = [*copy.glob("src/*/*"), *copy.glob("tools/mensor/*")]
        self.texts = {str(path.relative_to(copy)): path.read_text() for path in sorted(paths)
                      if path.suffix in (".cpp", ".h")}
        self.mutations = {name: mutations_of(name, text) for name, text in self.texts.items()}

    def line(self, mutation):
        return self.texts[mutation.source].count("\n", 0, mutation.start) + 1

    def mutated(self, mutation):
        text = self.texts[mutation.source]
        return text[:mutation.start] + mutation.new + text[mutation.end:]

    def difference(self, mutation):
        """The lines concerned, before and after, each as one line."""
        text = self.texts[mutation.source]
        start = text.rfind("\n", 0, mutation.start) + 1
        end = text.find("\n", mutation.end)
        after = text[start:mutation.start] + mutation.new + text[mutation.end:end]
        return tuple(re.sub(r"\s+", " ", part).strip() for part in (text[start:end], after))

    def sample(self, count, seed):
        """For each source: the name, the mutations in the order of drawing, and the number to draw."""
        total = sum(map(len, self.mutations.values()))
        for name, mutations in self.mutations.items():
            # A generator for each source, so that a change of one does not change the samples of the
            # others.
            chance = random.Random(f"{seed} {name}")
            kinds = collections.defaultdict(list)
            for mutation in mutations:
                kinds[mutation.kind].append(mutation)
            for same in kinds.values():
                chance.shuffle(same)
            drawn = []
            while any(kinds.values()):  # one of each kind in turn, so that rare kinds have their share
                drawn += [same.pop() for _, same in sorted(kinds.items()) if same]
            yield name, drawn, max(3, -(-count * len(mutations) // total))


def read_explained(path):
    """The explained mutants: {(source, before, after)}. The file's first lines say its form."""
    explained, source, before = set(), None, None
    for line in path.read_text().splitlines() if path.exists() else []:
        if line.startswith("- "):
            before = line[2:]
        elif line.startswith("+ "):
            explained.add((source, before, line[2:]))
        elif line and line[0] not in "# ":
            source = line
    return explained


# Building and testing.

class Killed(Exception):
    pass


def run(command, directory, seconds, processor_seconds):
    """The output of a test program; raises Killed if it fails or does not end."""
    def limit():
        resource.setrlimit(resource.RLIMIT_CPU, (processor_seconds, processor_seconds + 5))
        resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

    process = subprocess.Popen(command, cwd=directory, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limit)
    try:
        output = process.communicate(timeout=seconds)[0].decode(errors="replace")
    except subprocess.TimeoutExpired:
        raise Killed("does not end") from None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()
    if process.returncode != 0:
        failed = re.findall(r"\[  FAILED  \] (\w[\w/]*\.[\w./]+)|\d+ - (\S+) \(", output)
        by_signal = process.returncode < 0 and signal.Signals(-process.returncode).name
        raise Killed("".join(failed[0]) if failed else by_signal or f"status {process.returncode}")
    return output


class Tests:
    """The tests. First the test programs, each of which runs each of its tests in a process of its own; what
    survives these meets the other tests of ctest."""

    def __init__(self, build):
        self.build = build
        described = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True,
                                   capture_output=True).stdout
        self.programs, self.rest = {}, []
        for number, test in enumerate(json.loads(described)["tests"], 1):
            properties = {p["name"]: p["value"] for p in test["properties"]}
            if set(properties.get("LABELS", [])) & {"unit", "behaviour", "memory", "sweep"}:
                self.programs[test["name"]] = (test["command"], properties["WORKING_DIRECTORY"])
            else:
                self.rest.append(number)
        self.kills = collections.Counter()
        self.seconds = {}
        for name, (command, directory) in self.programs.items():
            begin = time.monotonic()
            run(command, directory, 3600, 3600)
            self.seconds[name] = time.monotonic() - begin
        begin = time.monotonic()
        self.run_rest(3600)
        self.seconds_of_rest = time.monotonic() - begin

    def own(self, source):
        """The program of the tests that belong to a source. Those of src/mensor_exact have a prefix."""
        prefix = "exact_" if "mensor_exact" in Path(source).parts else ""
        name = prefix + Path(source).stem + "_test"
        return name if name in self.programs else None

    def run_all(self, source, containers):
        """Raises Killed if a test fails. First what is likely to: what belongs to the source or contains it, what
        has killed its mutants before, what is quick."""
        for name in sorted(self.programs, key=lambda name: (
                name != self.own(source), name not in containers, -self.kills[source, name], self.seconds[name])):
            command, directory = self.programs[name]
            try:
                run([*command, "--gtest_fail_fast", "--gtest_brief=1"], directory,
                    30 + 30 * self.seconds[name], 5 + int(10 * self.seconds[name]))
            except Killed as reason:
                self.kills[source, name] += 1
                raise Killed(f"{name}: {reason}") from None
        try:
            self.run_rest(30 + 3 * self.seconds_of_rest)
        except Killed as reason:
            raise Killed(f"ctest: {reason}") from None

    def run_rest(self, seconds):
        if self.rest:  # with none named, ctest would run all
            run(["ctest", "--test-dir", self.build, "--parallel", JOBS, "--stop-on-failure", "--no-tests=error",
                 "-I", ",".join(map(str, [0, 0, 0, *self.rest]))], self.build, seconds, 600)


def compile_targets(build, targets):
    return subprocess.run(["cmake", "--build", build, "--parallel", JOBS, "--target", *targets],
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0


class Laboratory:
    def __init__(self, sources, build):
        self.sources, self.build = sources, build
        self.tests = Tests(build)
        self.products = {library.name: build / "src" / library.name / f"lib{library.name}.so"
                         for library in (sources.directory / "src").iterdir()}
        self.products["mensor_tool"] = build / "tools" / "mensor" / "mensor"
        # Modules, which a library or the tool loads.
        self.products["mensor_log4cplus"] = build / "src" / "mensor" / "mensor" / "log4cplus.so"
        self.products["mensor_registry"] = build / "src" / "mensor_exact" / "mensor" / "registry.so"
        self.originals = {}

    def containers(self, source):
        """The test programs that contain code of a source themselves: those that link its object. A header is in
        the programs that link any object of its library, and in its own test."""
        path = Path(source)
        if path.suffix == ".h":
            own = self.tests.own(source)
            objects, found = rf"/{path.parent.name}/\S*\.cpp\.o", {own} if own else set()
        else:
            objects, found = rf"/{re.escape(path.name)}\.o", set()
        links = re.findall(r"^build tests/(\w+): (.*)", (self.build / "build.ninja").read_text(), re.M)
        return sorted(found | {name for name, inputs in links
                               if re.search(objects, inputs) and name in self.tests.programs})

    def targets(self, source):
        return [*self.products, *self.containers(source)]

    def digest(self, targets):
        return [hashlib.sha256(self.products.get(target, self.build / "tests" / target).read_bytes()).digest()
                for target in targets]

    def judge(self, mutation):
        """Returns (verdict, reason): why the mutant does not count, or the test that killed it."""
        path = self.sources.directory / mutation.source
        targets = self.targets(mutation.source)
        if mutation.source not in self.originals:
            compile_targets(self.build, targets)
            self.originals[mutation.source] = self.digest(targets)
        path.write_text(self.sources.mutated(mutation))
        try:
            if not compile_targets(self.build, targets):
                return "invalid", "does not compile"
            if self.digest(targets) == self.originals[mutation.source]:
                return "invalid", "compiles to the same code"
            self.tests.run_all(mutation.source, self.containers(mutation.source))
            return "SURVIVED", ""
        except Killed as reason:
            return "killed", str(reason)
        finally:
            path.write_text(self.sources.texts[mutation.source])

    def restore(self, source):
        compile_targets(self.build, self.targets(source))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("copy", type=Path)
    parser.add_argument("build", type=Path)
    parser.add_argument("explained", type=Path)
    parser.add_argument("count", type=int, nargs="?", default=200)
    parser.add_argument("seed", nargs="?", default="1")
    parser.add_argument("--only", action="append", default=[])
    parser.add_argument("--survivors", action="store_true")
    parser.add_argument("--list", action="store_true")
    arguments = parser.parse_intermixed_args()

    # A thousand requests show the same leaks as a million.
    os.environ["MENSOR_REQUESTS"] = "1000"

    sources = Sources(arguments.copy)
    explained = read_explained(arguments.explained)
    survivors_file = arguments.build.parent / "survivors.json"
    every = [m for mutations in sources.mutations.values() for m in mutations]

    def key(mutation):
        return (mutation.source, *sources.difference(mutation))

    for source, before, after in sorted(explained - set(map(key, every))):
        print(f"{source} has no such mutant any more; remove its explanation:\n    - {before}\n    + {after}")
    if any(":" in place for place in arguments.only):
        wanted = [m for m in every if f"{m.source}:{sources.line(m)}" in arguments.only]
        draws = [(wanted, len(wanted))]
    elif arguments.survivors:
        last = {tuple(k) for k in json.loads(survivors_file.read_text())}
        wanted = [m for m in every if key(m) in last]
        draws = [(wanted, len(wanted))]
    else:
        draws = [(mutations, wanted)
                 for source, mutations, wanted in sources.sample(arguments.count, arguments.seed)
                 if not arguments.only or any(source == place or source.startswith(place.rstrip("/") + "/")
                                              for place in arguments.only)]

    def show(verdict, mutation, by=""):
        before, after = sources.difference(mutation)
        print(f"{verdict:9} {mutation.source}:{sources.line(mutation)}: {mutation.kind}  {by}", flush=True)
        if verdict != "killed":
            print(f"    - {before}\n    + {after}", flush=True)

    if arguments.list:
        for mutations, wanted in draws:
            for mutation in mutations[:wanted]:
                show("mutant", mutation)
        return 0

    try:
        laboratory = Laboratory(sources, arguments.build)
    except Killed as reason:
        sys.exit(f"mutate: a test fails without a mutation: {reason}")
    counts, kinds = collections.Counter(), collections.defaultdict(collections.Counter)
    survivors, begin = [], time.monotonic()
    for mutations, wanted in draws:
        good = 0
        for mutation in mutations:
            if good == wanted:
                break
            if key(mutation) in explained:
                verdict, by = "explained", ""
            else:
                verdict, by = laboratory.judge(mutation)
            if verdict == "invalid":
                counts[by] += 1
                continue
            good += 1
            counts[verdict] += 1
            kinds[mutation.kind][verdict] += 1
            show(verdict, mutation, by)
            if verdict == "SURVIVED":
                survivors.append(key(mutation))
        if mutations:
            laboratory.restore(mutations[0].source)
    if not arguments.only:
        survivors_file.write_text(json.dumps(survivors))
    for kind, verdicts in sorted(kinds.items()):
        print(f"{kind:20}", ", ".join(f"{count} {verdict}" for verdict, count in sorted(verdicts.items())))
    total = counts["killed"] + counts["explained"] + counts["SURVIVED"]
    print(f"{total} mutants in {(time.monotonic() - begin) / 60:.0f} min: {counts['killed']} killed, "
          f"{counts['explained']} explained, {counts['SURVIVED']} survived "
          f"(not counted: {counts['does not compile']} that do not compile, "
          f"{counts['compiles to the same code']} that compile to the same code)")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
