#!/usr/bin/env python3
"""What tools/mutants.py finds in a source, and that what it weaves says the same until a mutant is chosen."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import mutants  # noqa: E402

SOURCE = """#include <cstdio>
namespace {
constexpr int limit = 5;
// A comment says a < b && 7.
int calls = 0;
void count() { ++calls; }
bool isLarge(int value) { return value > limit; }
const char* word(bool large) {
    if (large && limit == 5) return "large";
    return "small";
}
}  // namespace
int main() {
    count();
    std::printf("%s %d\\n", word(isLarge(6)), calls);
    return 0;
}
"""


def changes(text):
    return [(mutant.kind, mutant.change) for mutant in mutants.mutants_of("a.cpp", text)]


class Finding(unittest.TestCase):
    def test_finds_each_kind(self):
        found = changes(SOURCE)
        self.assertIn(("condition", "not (large && limit == 5)"), found)
        self.assertIn(("operator", "&& to ||"), found)
        self.assertIn(("operator", "> to >="), found)
        self.assertIn(("constant", "5 to 6"), found)
        self.assertIn(("constant", '"large" to ""'), found)
        self.assertIn(("call", "left out: count()"), found)

    def test_finds_nothing_in_comments_templates_and_includes(self):
        self.assertEqual(changes("#include <a/b1.h>\n// if (a < 3) b();\nstd::vector<int> names;\n"), [])

    def test_leaves_alone_what_cannot_be_written_twice(self):
        found = changes("void f() {\n    if (const int x = g(); x > h) k = l;\n}\n")
        self.assertEqual(found, [])

    def test_names_the_line(self):
        call = next(mutant for mutant in mutants.mutants_of("a.cpp", SOURCE) if mutant.kind == "call")
        self.assertEqual(call.line, SOURCE[: SOURCE.index("    count();")].count("\n") + 1)


@unittest.skipUnless(shutil.which("clang++-19"), "needs the compiler")
class Weaving(unittest.TestCase):
    """One compiled source behaves as each of its mutants."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        folder = Path(cls.folder.name)
        (folder / "Mutants.h").write_text(mutants.RUNTIME)
        cls.numbered = list(enumerate(mutants.mutants_of("a.cpp", SOURCE)))
        (folder / "a.cpp").write_text(mutants.woven(SOURCE, cls.numbered, folder / "Mutants.h"))
        subprocess.run(["clang++-19", "-std=c++20", "-w", "a.cpp", "-o", "a"], cwd=folder, check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def said_with(self, change, **more):
        number = next((number for number, mutant in self.numbered if mutant.change == change), -1)
        self.assertTrue(change is None or number >= 0, change)
        environment = dict(more, CAIRNFIELD_MUTANT=str(number))
        return subprocess.run([self.folder.name + "/a"], env=environment, capture_output=True, text=True).stdout

    def test_says_the_same_without_a_mutant(self):
        self.assertEqual(self.said_with(None), "large 1\n")

    def test_each_kind_takes_effect(self):
        self.assertEqual(self.said_with("not (large && limit == 5)"), "small 1\n")
        self.assertEqual(self.said_with("== to !="), "small 1\n")
        self.assertEqual(self.said_with("5 to 6"), "small 1\n")
        self.assertEqual(self.said_with('"large" to ""'), " 1\n")
        self.assertEqual(self.said_with("left out: count()"), "large 0\n")

    def test_notes_which_mutants_are_met(self):
        met = Path(self.folder.name, "met")
        self.said_with(None, CAIRNFIELD_MUTANTS_MET=str(met))
        numbers = {int(line) for line in met.read_text().split()}
        by_change = {mutant.change: number for number, mutant in self.numbered}
        self.assertIn(by_change["left out: count()"], numbers)
        self.assertNotIn(by_change['"small" to ""'], numbers)


if __name__ == "__main__":
    unittest.main()
