#!/usr/bin/env python3
"""Tests of tools/check_tree.py on small trees made for the purpose: every rule finds what it is there for."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools" / "check_tree.py"


class CheckTree(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = Path(self.folder.name)
        self.addCleanup(self.folder.cleanup)

    def write(self, name, text=""):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    def check(self):
        done = subprocess.run([sys.executable, SCRIPT, self.root], capture_output=True, text=True)
        self.assertEqual(done.stderr, "")
        self.assertEqual(done.returncode, 1 if done.stdout else 0)
        return done.stdout.splitlines()

    def assert_one_breach(self, place, words):
        found = self.check()
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith(place + ": "), found[0])
        self.assertIn(words, found[0])

    def test_an_orderly_tree_has_no_breach(self):
        self.write("src/Shared/Text/Text.h", "#pragma once\n#include <string>\n")
        self.write("src/Models/Git.h", '#include "Shared/Text/Text.h"\n')
        self.write("src/Services/Git/Parser.h", '#include "Models/Git.h"\n')
        self.write("src/Persistence/Store.cpp", '#include "Services/Git/Parser.h"\n')
        self.write("src/Main/main.cpp", '#include "Platform/Linux/Spawn.h"\n#include <QGuiApplication>\n')
        self.write("src/Platform/Linux/Spawn.h")
        self.assertEqual(self.check(), [])

    def test_an_include_that_goes_up_is_found(self):
        self.write("src/Services/Git/Parser.h")
        self.write("src/Models/Git.h", '#pragma once\n#include "Services/Git/Parser.h"\n')
        self.assert_one_breach("src/Models/Git.h:2", "goes up")

    def test_only_main_knows_the_platform_s_implementation(self):
        self.write("src/Platform/Linux/Spawn.h")
        self.write("src/App/Model.cpp", '#include "Platform/Linux/Spawn.h"\n')
        self.assert_one_breach("src/App/Model.cpp:1", "for Main alone")

    def test_an_include_that_is_not_rooted_at_src_is_found(self):
        self.write("src/Models/Git.h")
        self.write("src/Models/Git.cpp", '#include "Git.h"\n')
        self.assert_one_breach("src/Models/Git.cpp:1", "rooted there")

    def test_a_circle_of_two_files_in_one_folder_is_found(self):
        self.write("src/Models/A.h", '#include "Models/B.h"\n')
        self.write("src/Models/B.h", '#include "Models/A.h"\n')
        self.assert_one_breach("src/Models/B.h:1", "circle of files: Models/A -> Models/B -> Models/A")

    def test_a_circle_through_a_source_is_found(self):
        self.write("src/Models/A.h", '#include "Models/B.h"\n')
        self.write("src/Models/B.h")
        self.write("src/Models/B.cpp", '#include "Models/B.h"\n#include "Models/A.h"\n')
        self.assert_one_breach("src/Models/B.cpp:2", "circle of files")

    def test_a_circle_of_folders_without_one_of_files_is_found(self):
        self.write("src/Services/Git/A.h", '#include "Services/GitHub/B.h"\n')
        self.write("src/Services/Git/C.h")
        self.write("src/Services/GitHub/B.h")
        self.write("src/Services/GitHub/D.h", '#include "Services/Git/C.h"\n')
        self.assert_one_breach("src/Services/GitHub/D.h:1", "circle of folders")

    def test_qt_outside_its_folders_is_found(self):
        self.write("src/App/Model.h", "#include <QObject>\n")
        self.write("src/Features/Root/Root.h", "#include <QtQml/qqmlregistration.h>\n")
        self.assert_one_breach("src/App/Model.h:1", "Qt (QObject)")

    def test_a_look_at_the_environment_is_found(self):
        self.write("src/Shared/Environment/Environment.cpp", "for (char** entry = environ; *entry; ++entry) {}\n")
        self.write("src/Models/Git.cpp", "// getenv is for others\nint environment;\n")
        self.assertEqual(self.check(), [])
        for call in ['setenv("A", "1", 1)', 'unsetenv("A")', "putenv(pair)", 'std::getenv("A")', 'qputenv("A", "1")',
                     'qgetenv("A")', 'qunsetenv("A")', 'qEnvironmentVariable("A")', "clearenv()", "environ[0]"]:
            self.write("src/Models/Git.cpp", f"\n{call};\n")
            self.assert_one_breach("src/Models/Git.cpp:2", "read once")

    def test_a_folder_on_no_floor_is_found(self):
        self.write("src/Utilities/Misc.h")
        self.assert_one_breach("src/Utilities/Misc.h:1", "no known floor")

    def test_a_header_may_have_200_lines_and_not_one_more(self):
        self.write("src/Models/Long.h", "\n" * 200)
        self.assertEqual(self.check(), [])
        self.write("src/Models/Long.h", "\n" * 201)
        self.assert_one_breach("src/Models/Long.h:201", "the limit is 200")

    def test_a_test_may_be_longer_than_a_source(self):
        self.write("tests/unit/LongTests.cpp", "\n" * 500)
        self.assertEqual(self.check(), [])
        self.write("src/Models/Long.cpp", "\n" * 501)
        self.assert_one_breach("src/Models/Long.cpp:501", "the limit is 500")

    def test_a_colour_outside_the_theme_is_found(self):
        self.write("src/Features/Root/Theme.qml", 'QtObject { property color text: "#1B1B1F" }\n')
        for colour in ['"#fff"', '"red"', "Qt.rgba(0, 0, 0, 1)"]:
            self.write("src/Features/Root/Root.qml", f"Rectangle {{\n    color: {colour}\n}}\n")
            self.assert_one_breach("src/Features/Root/Root.qml:2", "colour")
        self.write("src/Features/Root/Root.qml", 'Rectangle {\n    color: "transparent"\n}\n')
        self.assertEqual(self.check(), [])

    def test_a_size_outside_the_theme_is_found(self):
        self.write("src/Features/Root/Root.qml", "Column {\n    spacing: 8\n}\n")
        self.assert_one_breach("src/Features/Root/Root.qml:2", "size")
        self.write("src/Features/Root/Root.qml", "Column {\n    spacing: Theme.gap\n    padding: 0\n}\n")
        self.assertEqual(self.check(), [])

    def test_text_that_could_be_markup_is_found(self):
        self.write("src/Features/Root/Root.qml", "Item {\n    Text {\n        text: model.name\n    }\n}\n")
        self.assert_one_breach("src/Features/Root/Root.qml:2", "markup")
        self.write("src/Features/Root/Root.qml", "Item {\n    Text {\n        textFormat: Text.PlainText\n    }\n}\n")
        self.assertEqual(self.check(), [])

    def test_a_path_of_one_machine_is_found_in_any_text(self):
        machine_path = "/".join(["", "root", "projects"])
        self.write("README.md", f"Look\nat {machine_path}.\n")
        self.assert_one_breach("README.md:2", "one particular machine")
        self.write("README.md", "Look at ~/work/projects.\n")
        self.assertEqual(self.check(), [])

    def test_built_files_are_not_looked_at(self):
        self.write("build/debug/src/Models/Long.h", "\n" * 1000)
        self.assertEqual(self.check(), [])


if __name__ == "__main__":
    unittest.main()
