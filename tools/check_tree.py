#!/usr/bin/env python3
"""Checks the rules of the tree that no compiler knows.

    check_tree.py [ROOT]

Prints one line for each breach, "file:line: what is wrong", and exits with 1 when there was any. The rules:

- Floors: an include goes down the list of FLOORS or stays on its floor; only Main knows Platform/Linux.
- Circles: neither two files nor two folders of src/ include each other, directly or round about. A header and the source
  of its name count as one file.
- Qt stays in the folders of QT_FOLDERS.
- Sizes: no file is longer than its kind's limit in LINE_LIMITS.
- Environment: only ENVIRONMENT_READER reads the variables of the process, and nothing in src/ changes them.
- QML: colours, sizes and durations come from Theme; text that comes from outside cannot be taken for markup.
- No path of one particular machine stands in any file.
"""

import os
import re
import sys
from pathlib import Path

FLOORS = [["Main"], ["Features"], ["App"], ["Services", "Persistence"], ["Platform"], ["Models"], ["Shared"]]
QT_FOLDERS = ["Main", "Features", "Shared/Components", "Platform/Linux/Desktop"]
LINE_LIMITS = {".h": 200, ".cpp": 500, ".qml": 250, ".py": 400, ".sh": 300}
TEST_LINE_LIMIT = 500
SKIPPED_FOLDERS = {".git", ".cache", "build", "__pycache__"}

ENVIRONMENT_READER = "Shared/Environment/Environment.cpp"
ENVIRONMENT_CALL = re.compile(
    r"\b(?:q?putenv|setenv|q?unsetenv|clearenv|getenv|secure_getenv|qgetenv|qEnvironmentVariable\w*|QProcessEnvironment"
    r"|environ|__environ)\b"
)
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
MACHINE_PATH = re.compile(r"(?<![\w.}~])/(?:work|root)/|/tmp/bash[_]jobs")
TEXT_SUFFIXES = {".h", ".cpp", ".qml", ".py", ".sh", ".md", ".txt", ".cmake", ".json", ".xml", ".desktop", ".svg", ".in", ""}

HEX_COLOUR = re.compile(r"""["']#[0-9A-Fa-f]{3,8}["']""")
NAMED_COLOUR = re.compile(r"""\b\w*[cC]olor\s*:\s*["'](?!transparent["'])\w+["']|\bQt\.(?:rgba|hsla|hsva)\(""")
# A length or duration of 0 or 1 is a fact (none, a hairline), not a choice.
LITERAL_SIZE = re.compile(
    r"\b(?:spacing|padding|\w+Padding|margins|\w+Margin|radius|duration|pointSize|pixelSize|implicitWidth|implicitHeight"
    r"|preferredWidth|preferredHeight|minimumWidth|minimumHeight|maximumWidth|maximumHeight)\s*:\s*(?!0\b|1\b)\d"
)
TEXT_ELEMENT = re.compile(r"^\s*(?:\w+\s*:\s*)?(?:\w+\.)?(Text|Label|TextEdit|TextArea)\s*\{")


def floor_of(folder):
    """The number of the floor that a folder of src/ stands on, 0 at the top; None for an unknown one."""
    for number, names in enumerate(FLOORS):
        if folder in names:
            return number
    return None


def files_below(root):
    for directory, folders, names in os.walk(root):
        folders[:] = sorted(name for name in folders if name not in SKIPPED_FOLDERS)
        for name in sorted(names):
            if name not in SKIPPED_FOLDERS:  # in a linked worktree .git is a file
                yield Path(directory, name)


def lines_of(file):
    return file.read_text(encoding="utf-8", errors="replace").splitlines()


def includes_of(file):
    """(line number, path between the quotes, whether it stood in quotes)"""
    for number, line in enumerate(lines_of(file), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match[2], match[1] == '"'


class Check:
    def __init__(self, root):
        self.root = Path(root).resolve()
        self.breaches = []
        self.file_graph = {}  # unit of src/ -> {unit that it includes: where}
        self.folder_graph = {}

    def report(self, file, line, text):
        self.breaches.append(f"{file.relative_to(self.root)}:{line}: {text}")

    def run(self):
        source = self.root / "src"
        for file in files_below(self.root):
            if file.is_symlink() or file.suffix not in TEXT_SUFFIXES:
                continue
            lines = lines_of(file)
            self.check_size(file, lines)
            self.check_machine_paths(file, lines)
            if source in file.parents and file.suffix in (".h", ".cpp"):
                self.check_includes(file, file.relative_to(source))
                self.check_environment(file, lines)
            if file.suffix == ".qml" and source in file.parents and file.name != "Theme.qml":
                self.check_qml(file, lines)
        self.check_circles(self.file_graph, "files")
        self.check_circles(self.folder_graph, "folders")
        return self.breaches

    def check_size(self, file, lines):
        in_tests = file.relative_to(self.root).parts[0] in ("tests", "benchmarks")
        limit = LINE_LIMITS.get(file.suffix)
        if limit and in_tests:
            limit = TEST_LINE_LIMIT
        if limit and len(lines) > limit:
            self.report(file, limit + 1, f"{len(lines)} lines, and the limit is {limit}")

    def check_machine_paths(self, file, lines):
        for number, line in enumerate(lines, 1):
            if MACHINE_PATH.search(line):
                self.report(file, number, "names a path of one particular machine")

    def check_environment(self, file, lines):
        if file.relative_to(self.root / "src").as_posix() == ENVIRONMENT_READER:
            return
        for number, line in enumerate(lines, 1):
            if ENVIRONMENT_CALL.search(line.split("//")[0]):
                self.report(file, number, f"the environment is read once, in src/{ENVIRONMENT_READER}, and never changed")

    def check_includes(self, file, place):
        here = floor_of(place.parts[0])
        if here is None:
            self.report(file, 1, f"src/{place.parts[0]} stands on no known floor")
            return
        folder = place.parent.as_posix()
        for line, target, quoted in includes_of(file):
            if not quoted:
                if re.match(r"Q[A-Z]|Qt", target) and not any(
                    folder == name or folder.startswith(name + "/") for name in QT_FOLDERS
                ):
                    self.report(file, line, f"Qt ({target}) has no place in src/{folder}")
                continue
            there = floor_of(Path(target).parts[0])
            if there is None or not (self.root / "src" / target).is_file():
                if not target.endswith(".moc"):
                    self.report(file, line, f'"{target}" is no header of src/, and includes are rooted there')
                continue
            if there < here:
                self.report(file, line, f'goes up: {place.parts[0]} may not include "{target}"')
            if target.startswith("Platform/Linux/") and here != 0 and not folder.startswith("Platform/Linux"):
                self.report(file, line, f'"{target}" is for Main alone')
            self.note(self.file_graph, place.with_suffix("").as_posix(), Path(target).with_suffix("").as_posix(), file, line)
            self.note(self.folder_graph, folder, Path(target).parent.as_posix(), file, line)

    @staticmethod
    def note(graph, start, end, file, line):
        graph.setdefault(start, {})
        if start != end:
            graph[start].setdefault(end, (file, line))

    def check_circles(self, graph, what):
        finished, path = set(), []

        def visit(node):
            if node in path:
                circle = path[path.index(node) :] + [node]
                file, line = graph[circle[-2]][node]
                self.report(file, line, f"circle of {what}: " + " -> ".join(circle))
                return
            if node in finished:
                return
            path.append(node)
            for end in sorted(graph.get(node, {})):
                visit(end)
            path.pop()
            finished.add(node)

        for node in sorted(graph):
            visit(node)

    def check_qml(self, file, lines):
        for number, line in enumerate(lines, 1):
            code = line.split("//")[0]
            if HEX_COLOUR.search(code) or NAMED_COLOUR.search(code):
                self.report(file, number, "a colour that is not Theme's")
            if LITERAL_SIZE.search(code):
                self.report(file, number, "a size or duration that is not Theme's")
            if TEXT_ELEMENT.match(code) and not self.is_plain(lines, number - 1):
                self.report(file, number, "text without textFormat: Text.PlainText could be taken for markup")

    @staticmethod
    def is_plain(lines, start):
        """Whether the element that opens on this line says textFormat before its brace closes."""
        depth = 0
        for line in lines[start:]:
            code = re.sub(r'"(?:\\.|[^"\\])*"', '""', line).split("//")[0]
            if "textFormat" in code:
                return True
            depth += code.count("{") - code.count("}")
            if depth <= 0:
                return False
        return False


def main(arguments):
    if len(arguments) > 1:
        print(__doc__, file=sys.stderr)
        return 2
    breaches = Check(arguments[0] if arguments else ".").run()
    for breach in breaches:
        print(breach)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
