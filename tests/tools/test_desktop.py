#!/usr/bin/env python3
"""Tests of tools/desktop.sh with the real program, whose path is the first argument: without a display there is a picture,
and after Ctrl-C there is nothing left."""

import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

TOOLS = Path(__file__).resolve().parents[2] / "tools"
PROGRAM = sys.argv.pop(1)

SCRIPT = """
set -euo pipefail
say() { echo "$*" >&2; }
fail() { say "$*"; exit 1; }
workDirectory=$HOME/work
mkdir "$workDirectory"
source "$TOOLS/desktop.sh"
trap endDesktop EXIT
runProgram "$HOME/window.png" "$PROGRAM"
"""


def processes_of(mark):
    """Those whose environment carries the mark, which every descendant inherits."""
    found = []
    for process in Path("/proc").glob("[0-9]*"):
        try:
            if mark.encode() in (process / "environ").read_bytes():
                found.append(int(process.name))
        except OSError:
            continue  # it ended while we looked, or is not ours
    return found


class Desktop(unittest.TestCase):
    def setUp(self):
        self.home = Path(tempfile.mkdtemp(prefix="cairnfield-desktop-"))
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.mark = f"CAIRNFIELD_TEST_MARK={self.home}"

    def start(self, program=PROGRAM):
        name, value = self.mark.split("=")
        environment = {"HOME": str(self.home), "PATH": "/usr/bin:/bin", "TOOLS": str(TOOLS), "PROGRAM": program,
                       "LC_ALL": "C.UTF-8", name: value}
        return subprocess.Popen(["bash", "-c", SCRIPT], env=environment, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                text=True, start_new_session=True)

    def lines_until(self, started, pattern):
        told = ""
        for line in started.stderr:
            told += line
            if re.search(pattern, line):
                return told
        self.fail(f"the script ended without {pattern!r}:\n{told}")

    def assert_nothing_is_left(self):
        deadline = time.monotonic() + 10
        while (left := processes_of(self.mark)) and time.monotonic() < deadline:
            os.sched_yield()
        self.assertEqual(left, [])

    def test_without_a_display_there_is_a_picture_and_ctrl_c_ends_everything(self):
        started = self.start()
        self.lines_until(started, "A picture of the window: ")
        picture = self.home / "window.png"
        self.assertEqual(picture.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")
        colours = subprocess.run(["identify", "-format", "%k", picture], capture_output=True, text=True, check=True).stdout
        self.assertGreater(int(colours), 8)
        os.killpg(started.pid, signal.SIGINT)
        started.communicate(timeout=30)
        self.assertEqual(started.returncode, 0)
        self.assert_nothing_is_left()

    def test_a_program_that_fails_fails_the_script_and_leaves_nothing(self):
        started = self.start("/bin/false")
        started.communicate(timeout=30)
        self.assertEqual(started.returncode, 1)
        self.assert_nothing_is_left()

    def test_asking_the_script_alone_to_end_ends_everything(self):
        started = self.start()
        self.lines_until(started, "A picture of the window: ")
        started.send_signal(signal.SIGTERM)
        started.communicate(timeout=30)
        self.assert_nothing_is_left()


if __name__ == "__main__":
    unittest.main()
