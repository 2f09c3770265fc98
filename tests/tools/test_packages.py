#!/usr/bin/env python3
"""Tests of tools/packages.sh with a make-believe package system: what is asked of it, and when."""

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools" / "packages.sh"
NOBODY = 65534

# Each stand-in writes down how it was called. Packages are installed, known or unknown by what two files say.
STAND_INS = {
    "dpkg-query": 'for word; do grep -x "$word" "$here/installed" | sed "s/^/installed /"; done; exit 1',
    "apt-cache": 'shift; for word; do grep -qx "$word" "$here/known" || exit 100; done',
    "apt-get": 'echo "apt-get $*" >>"$here/calls"; case "$*" in *update*) cat "$here/new" >>"$here/known";; esac',
    "sudo": 'echo "sudo $*" >>"$here/calls"; exec "$@"',
}


class Packages(unittest.TestCase):
    def setUp(self):
        self.here = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.here)
        self.here.chmod(0o777)
        for name, body in STAND_INS.items():
            file = self.here / name
            file.write_text(f'#!/bin/bash\nhere="{self.here}"\n{body}\n')
            file.chmod(0o755)
        for name in ("installed", "known", "new", "calls"):
            (self.here / name).write_text("")
            (self.here / name).chmod(0o666)
        shutil.copy(SCRIPT, self.here / "packages.sh")
        (self.here / "packages.sh").chmod(0o644)

    def world(self, **files):
        for name, packages in files.items():
            (self.here / name).write_text("".join(package + "\n" for package in packages))

    def ensure(self, *packages, as_root):
        script = (f'set -euo pipefail; say() {{ echo "$*" >&2; }}; fail() {{ say "$*"; exit 1; }}\n'
                  f'source "{self.here}/packages.sh"\nensurePackages {" ".join(packages)}\n')
        command = ["bash", "-c", script]
        if not as_root and os.geteuid() == 0:
            command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", *command]
        done = subprocess.run(command, env={"PATH": f"{self.here}:/usr/bin:/bin"}, capture_output=True, text=True,
                              stdin=subprocess.DEVNULL)
        return done.returncode, done.stderr, (self.here / "calls").read_text().splitlines()

    def test_nothing_is_asked_or_called_when_all_is_there(self):
        self.world(installed=["cmake", "git"])
        for as_root in {os.geteuid() == 0, False}:
            self.assertEqual(self.ensure("git", "cmake", as_root=as_root), (0, "", []))

    @unittest.skipUnless(os.geteuid() == 0, "for root")
    def test_root_installs_what_is_missing_and_nothing_else(self):
        self.world(installed=["git"], known=["git", "cmake", "ninja-build"])
        status, _, calls = self.ensure("git", "cmake", "ninja-build", as_root=True)
        self.assertEqual(status, 0)
        self.assertEqual(calls, ["apt-get -q install -y --no-install-recommends cmake ninja-build"])

    @unittest.skipUnless(os.geteuid() == 0, "for root")
    def test_lists_that_do_not_know_a_package_are_fetched_first(self):
        self.world(new=["cmake"])
        status, _, calls = self.ensure("cmake", as_root=True)
        self.assertEqual(status, 0)
        self.assertEqual(calls, ["apt-get -q update", "apt-get -q install -y --no-install-recommends cmake"])

    @unittest.skipUnless(os.geteuid() == 0, "for root")
    def test_lists_that_are_out_of_date_are_fetched_and_it_is_tried_again(self):
        self.world(known=["cmake"])
        apt = self.here / "apt-get"
        apt.write_text(apt.read_text() + '[[ "$*" != *install* ]] || grep -q update "$here/calls"\n')
        status, _, calls = self.ensure("cmake", as_root=True)
        self.assertEqual(status, 0)
        self.assertEqual([call.split()[2] for call in calls], ["install", "update", "install"])

    def test_without_anybody_to_ask_the_command_is_told_and_nothing_is_done(self):
        self.world(known=["cmake"])
        status, told, calls = self.ensure("cmake", as_root=False)
        self.assertEqual((status, calls), (1, []))
        self.assertIn("missing: cmake", told)
        self.assertIn("sudo apt-get install --no-install-recommends cmake", told)

    def test_a_package_that_was_removed_counts_as_missing(self):
        query = self.here / "dpkg-query"
        query.write_text('#!/bin/bash\necho "config-files cmake"\n')
        status, told, _ = self.ensure("cmake", as_root=False)
        self.assertEqual(status, 1)
        self.assertIn("missing: cmake", told)


if __name__ == "__main__":
    unittest.main()
