#!/usr/bin/env python3
"""Breaks the program in small ways, one at a time, and tells which breaks no test notices.

    mutate.py [PATH...] [--sample N] [--seed S] [--minutes M] [--jobs J] [--again]

PATH is a source or a folder below src/; without one, the folders of FOLDERS are taken. Works in a copy of the tree,
build/mutate/tree. A mutant is run against the test programs that mirror its folder, and of these only against the tests
that reach its line. It counts as killed when a test fails, crashes or does not end; as survived when all pass; as
unreached when no test comes by. What was found is kept in build/mutate/results.jsonl and not tried again as long as
source and tests are as they were, so that a run that ended early goes on where it stopped; --again forgets it.
"""

import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import random
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import mutants

FOLDERS = ["src/App", "src/Services/Cleanup", "src/Services/Git", "src/Persistence"]
# Calls without an effect that a test could see: a log line, a check for our own mistakes.
NO_MATTER = re.compile(r"left out: (Log::|assertIsolated|\w+\.reserve)")
PRESET = "debug"


def run(command, **options):
    return subprocess.run(command, stdin=subprocess.DEVNULL, **options)


class Tree:
    """The copy that is changed and built."""

    def __init__(self, project):
        self.project = project
        self.root = project / "build/mutate/tree"
        self.build = self.root / "build" / PRESET
        self.header = self.root / "Mutants.h"

    def update(self):
        listed = run(["git", "ls-files", "-z", "-c", "-o", "--exclude-standard"], cwd=self.project, check=True, capture_output=True)
        names = {name for name in listed.stdout.decode().split("\0") if name and (self.project / name).is_file()}
        for old in (path for path in self.root.rglob("*") if path.is_file() and self.build.parent not in path.parents):
            if str(old.relative_to(self.root)) not in names and old != self.header:
                old.unlink()
        for name in names:
            self.put(name, (self.project / name).read_bytes(), (self.project / name).stat().st_mode)
        self.write(self.header, mutants.RUNTIME.encode())

    def put(self, name, content, mode=None):
        self.write(self.root / name, content)
        if mode is not None:
            (self.root / name).chmod(mode & 0o777)

    @staticmethod
    def write(path, content):
        """Only what differs, so that little is compiled anew."""
        if path.is_file() and path.read_bytes() == content:
            return
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)

    def configure(self):
        log = run(["cmake", "--preset", PRESET, "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"], cwd=self.root, capture_output=True, text=True)
        if log.returncode:
            sys.exit(log.stdout + log.stderr)
        commands = json.loads((self.build / "compile_commands.json").read_text())
        self.commands = {os.path.relpath(entry["file"], self.root): entry for entry in commands}

    def make(self, targets):
        arguments = [word for target in targets for word in ("--target", target)]
        # One compiler a core; the copy has its own paths, which ccache may overlook.
        environment = dict(os.environ, CCACHE_NOHASHDIR="1", CCACHE_BASEDIR=os.environ.get("CCACHE_BASEDIR", str(self.root)))
        if run(["cmake", "--build", self.build, "--parallel", str(os.cpu_count()), *arguments], env=environment, stdout=sys.stderr).returncode:
            sys.exit("the copy does not build")

    def complaints(self, name):
        """The lines of a source that the compiler names in errors, and in notes that belong to them."""
        entry = self.commands[name]
        words = [word for word in shlex.split(entry["command"]) if word != "ccache" and not word.endswith("/ccache")]
        words = words[: words.index("-o")] + words[words.index("-o") + 2 :]
        answer = run([*words, "-fsyntax-only", "-w", "-ferror-limit=0"], cwd=entry["directory"], capture_output=True, text=True)
        if answer.returncode == 0:
            return set(), ""
        pattern = re.compile(rf"^[^\n]*{re.escape(Path(name).name)}:(\d+):\d+: (?:fatal error|error|note)", re.MULTILINE)
        return {int(line) for line in pattern.findall(answer.stderr)}, answer.stderr


def weave(tree, name, numbered):
    """Puts as many of the mutants into the source as compile together; gives those."""
    text = (tree.project / name).read_text()
    while numbered:
        tree.put(name, mutants.woven(text, numbered, tree.header).encode())
        lines, said = tree.complaints(name)
        if not said:
            return numbered
        kept = [(n, m) for n, m in numbered if not set(range(*span(text, m))) & lines]
        if len(kept) == len(numbered):
            print(f"{name}: left alone, since the woven source does not compile:\n{said[:2000]}", file=sys.stderr)
            break
        numbered = kept
    tree.put(name, text.encode())
    return []


def span(text, mutant):
    return text.count("\n", 0, mutant.start) + 1, text.count("\n", 0, mutant.end) + 2


def programs_for(tree, name):
    """The test programs that mirror a source's folder: [(target, path)]."""
    folder = Path(name).parent.relative_to("src")
    found = []
    for kind in ("unit", "integration"):
        lists = tree.root / "tests" / kind / folder / "CMakeLists.txt"
        text = lists.read_text() if lists.is_file() else ""
        for target in re.findall(r"cairnfield_test\((\w+)", text):
            found.append((target, tree.build / "tests" / kind / folder / target))
    return found


class Programs:
    """Runs tests, and knows which mutants each of them meets."""

    def __init__(self):
        self.met_by = collections.defaultdict(list)  # mutant -> [(seconds, program, test)]

    def environment(self, home, **more):
        keep = {name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "DISPLAY", "WAYLAND", "DBUS"))}
        return dict(keep, XDG_RUNTIME_DIR=home, GTEST_BRIEF="1", **more)

    def call(self, program, tests, limit, **more):
        """Whether all of the tests passed in time."""
        with tempfile.TemporaryDirectory(prefix="cairnfield-mutant.") as home:
            process = subprocess.Popen(
                [program, "--gtest_fail_fast", "--gtest_filter=" + ":".join(tests)],
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                env=self.environment(home, **more), cwd=home, start_new_session=True,
            )
            try:
                return process.wait(limit) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                try:
                    os.killpg(process.pid, 9)
                except ProcessLookupError:
                    pass
                process.wait()

    def learn(self, program, test):
        with tempfile.TemporaryDirectory(prefix="cairnfield-met.") as folder:
            met = Path(folder, "met")
            start = time.monotonic()
            passed = self.call(program, [test], 120, CAIRNFIELD_MUTANTS_MET=str(met))
            seconds = time.monotonic() - start
            numbers = {int(line) for line in met.read_text().split()} if met.exists() else set()
        if not passed:
            print(f"left out, since it fails without any mutant: {test}", file=sys.stderr)
            return
        for number in numbers:
            self.met_by[number].append((seconds, program, test))

    def names(self, program):
        listed = run([program, "--gtest_list_tests"], capture_output=True, text=True, check=True).stdout
        suite = ""
        for line in listed.splitlines():
            if not line.startswith(" "):
                suite = line.split()[0]
            else:
                yield suite + line.split("#")[0].strip()

    def try_mutant(self, number):
        """ "killed", "survived" or "unreached"."""
        tests = self.met_by.get(number, [])
        by_program = collections.defaultdict(list)
        for seconds, program, test in sorted(tests, key=lambda item: item[0]):
            by_program[program].append((seconds, test))
        for program, members in sorted(by_program.items(), key=lambda item: sum(seconds for seconds, _ in item[1])):
            limit = 20 + 4 * sum(seconds for seconds, _ in members)
            if not self.call(program, [test for _, test in members], limit, CAIRNFIELD_MUTANT=str(number)):
                return "killed"
        return "survived" if tests else "unreached"


def sources_of(project, paths):
    for path in paths:
        if not (project / path).exists() or not str(path).startswith("src/"):
            sys.exit(f"{path} is not below src/")
        files = [project / path] if (project / path).is_file() else sorted((project / path).rglob("*.cpp"))
        yield from (str(file.relative_to(project)) for file in files)


def chosen(project, options):
    """The sampled mutants of each source, in the order of the shuffle."""
    everything = []
    for name in sources_of(project, options.paths):
        found = mutants.mutants_of(name, (project / name).read_text())
        everything += [mutant for mutant in found if not NO_MATTER.match(mutant.change)]
    random.Random(options.seed).shuffle(everything)
    by_source = collections.defaultdict(list)
    for number, mutant in enumerate(everything[: options.sample] if options.sample else everything):
        by_source[mutant.file].append((number, mutant))
    return by_source


def state_of(project, name, programs):
    """Changes whenever the source or one of its tests does."""
    digest = hashlib.sha256((project / name).read_bytes())
    for folder in sorted({path.parent for _, path in programs}):
        tests = project / folder.relative_to(project / "build/mutate/tree" / "build" / PRESET)
        for file in sorted(tests.glob("*")):
            digest.update(file.read_bytes() if file.is_file() else b"")
    return digest.hexdigest()[:16]


def report(results):
    table = collections.defaultdict(collections.Counter)
    for outcome in results:
        table[str(Path(outcome["file"]).parent)][outcome["outcome"]] += 1
    print(f"{'folder':<24}{'mutants':>8}{'killed':>8}{'survived':>9}{'unreached':>10}{'score':>8}")
    total = collections.Counter()
    for folder, counts in sorted(table.items()):
        total += counts
        print(row(folder, counts))
    print(row("together", total))
    for outcome in sorted(results, key=lambda one: (one["file"], one["line"])):
        if outcome["outcome"] != "killed":
            print(f"{outcome['file']}:{outcome['line']}: {outcome['outcome']}: {outcome['kind']}: {outcome['change']}")


def row(name, counts):
    number = sum(counts.values())
    score = f"{100 * counts['killed'] / number:.1f} %" if number else "-"
    return f"{name:<24}{number:>8}{counts['killed']:>8}{counts['survived']:>9}{counts['unreached']:>10}{score:>8}"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("paths", nargs="*", default=FOLDERS)
    parser.add_argument("--sample", type=int, default=0, help="this many, spread over all of PATH")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--minutes", type=float, default=0, help="how long mutants are tried")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--again", action="store_true")
    options = parser.parse_args()
    project = Path(__file__).resolve().parent.parent
    kept = project / "build/mutate/results.jsonl"
    if options.again:
        kept.unlink(missing_ok=True)
    known = {}
    if kept.exists():
        known = {line["key"]: line for line in map(json.loads, kept.read_text().splitlines())}

    tree = Tree(project)
    tree.root.mkdir(parents=True, exist_ok=True)
    by_source = chosen(project, options)
    tree.update()
    tree.configure()
    results, waiting, programs = [], [], {}
    for name, numbered in by_source.items():
        found = programs_for(tree, name)
        state = state_of(project, name, found)
        keys = {number: f"{state}:{mutant.key}" for number, mutant in numbered}
        results += [known[keys[number]] for number, _ in numbered if keys[number] in known]
        numbered = [(number, mutant) for number, mutant in numbered if keys[number] not in known]
        for number, mutant in weave(tree, name, numbered):
            waiting.append((number, mutant, keys[number]))
            programs.update(found)
    print(f"{len(results)} known, {len(waiting)} to try", file=sys.stderr)
    if waiting:
        try_all(tree, options, waiting, programs, results, kept)
    report(results)


def try_all(tree, options, waiting, programs, results, kept):
    tree.make(sorted(programs))
    tests = Programs()
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        names = [(program, test) for program in programs.values() for test in tests.names(program)]
        list(pool.map(lambda pair: tests.learn(*pair), names))
        print(f"{len(names)} tests know what they reach", file=sys.stderr)
        end = time.monotonic() + 60 * options.minutes if options.minutes else None

        def attempt(item):
            number, mutant, key = item
            if end and time.monotonic() > end:
                return None
            fields = {"key": key, "file": mutant.file, "line": mutant.line, "kind": mutant.kind, "change": mutant.change}
            return dict(fields, outcome=tests.try_mutant(number))

        with kept.open("a") as file:
            for outcome in pool.map(attempt, waiting):
                if outcome:
                    results.append(outcome)
                    file.write(json.dumps(outcome) + "\n")
                    file.flush()


if __name__ == "__main__":
    main()
