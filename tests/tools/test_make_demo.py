#!/usr/bin/env python3
"""The demonstration shows what it promises: every worktree has the verdict that it was made for. Started with the driver's
path as its first argument."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "driver"))
from driver_case import DRIVER, Answer, main  # noqa: E402

SCRIPT = Path(__file__).resolve().parents[2] / "tools" / "make_demo.py"

VERDICTS = {
    "Projects/storefront": "mainWorktree",
    "Projects/storefront-checkout-totals": "cleanMerged",
    "Projects/storefront-gift-cards": "remotelyPreserved",
    "Projects/storefront-wish-list": "committedButUnpushed",
    "Projects/storefront-rounding": "dirtyTrackedChanges",
    "Projects/storefront-staging": "sensitiveIgnoredFiles",
    "Projects/storefront-test-vm": "manualReview",
    "Projects/storefront-vat-rates": "unresolvedConflicts",
    "Projects/storefront-vat-2027": "activeOrLocked",
    "Projects/storefront/.claude/worktrees/spike-search": "untrackedChanges",
    "Projects/storefront/.claude/worktrees/type-errors": "cleanMerged",
    "Projects/tiles": "mainWorktree",
    "Projects/atlas": "mainWorktree",
    "Projects/atlas-older-tiles": "submoduleRequiresReview",
    "Projects/atlas-projection": "mergeOrRebaseInProgress",
    "Projects/atlas-globe": "detachedWithUniqueCommits",
    "Projects/atlas-at-main": "cleanMerged",
    "Projects/atlas-night-mode": "inaccessible",
    "Projects/atlas – élévation": "activeOrLocked",
    "Projects/notes": "mainWorktree",
    "Projects/notes-rewrite": "unsupportedRemote",
    "Projects/notes-tidy-up": "cleanDisposable",
    "Work/ledger": "mainWorktree",
    "Work/ledger-export": "unsupportedRemote",
    "Work/fieldkit": "mainWorktree",
    "Work/fieldkit-offline-maps": "manualReview",
    "Work/platform/.bare": "bareRepository",
    "Work/platform/main": "cleanMerged",
    "Work/platform/metrics": "cleanMerged",
}
NEEDS_A_HOSTING_SERVICE = {"openPullRequest"}
ALL_VERDICTS = {
    "mainWorktree", "bareRepository", "activeOrLocked", "cleanDisposable", "cleanMerged", "remotelyPreserved",
    "openPullRequest", "committedButUnpushed", "dirtyTrackedChanges", "untrackedChanges", "detachedWithUniqueCommits",
    "sensitiveIgnoredFiles", "mergeOrRebaseInProgress", "unresolvedConflicts", "submoduleRequiresReview",
    "unsupportedRemote", "inaccessible", "manualReview",
}


class MakeDemo(unittest.TestCase):
    def setUp(self):
        self.home = Path(tempfile.mkdtemp(prefix="cairnfield-demo-"))
        self.addCleanup(shutil.rmtree, self.home)

    def make(self):
        return subprocess.run([sys.executable, SCRIPT, self.home], capture_output=True, text=True)

    def inspect(self):
        environment = {"HOME": str(self.home), "XDG_DATA_HOME": str(self.home / ".local/share"),
                       "XDG_CONFIG_HOME": str(self.home / ".config"), "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"}
        words = [DRIVER, "inspect", self.home / "Projects", self.home / "Work", "--sizes"]
        return Answer(subprocess.run(words, env=environment, capture_output=True)).result["worktrees"]

    def test_every_worktree_has_the_verdict_that_it_was_made_for(self):
        self.assertEqual(self.make().returncode, 0)
        worktrees = self.inspect()
        found = {str(Path(each["path"]).relative_to(self.home)): each["safety"] for each in worktrees}
        self.assertEqual(found, VERDICTS)
        self.assertEqual(set(found.values()), ALL_VERDICTS - NEEDS_A_HOSTING_SERVICE)
        locked = [each for each in worktrees if each["isLocked"]]
        self.assertEqual([each["lockReason"] for each in locked], ["build in progress on the release machine"])
        self.assertEqual({each["source"] for each in worktrees}, {"claude", "generic"})

    def test_a_complete_demo_is_kept_and_its_recent_worktree_recent(self):
        self.make()
        recent = self.home / "Projects/atlas – élévation"
        os.utime(recent, (1_700_000_000, 1_700_000_000))
        notes = self.home / "Projects/notes/notes.md"
        notes.write_text("Mine.\n")
        self.assertEqual(self.make().returncode, 0)
        self.assertEqual(notes.read_text(), "Mine.\n")
        self.assertGreater(recent.stat().st_mtime, 1_700_000_000)

    def test_a_home_that_holds_something_else_is_left_alone(self):
        (self.home / "letter.txt").write_text("Dear\n")
        done = self.make()
        self.assertEqual(done.returncode, 1)
        self.assertIn("no complete demo", done.stderr)
        self.assertEqual([each.name for each in self.home.iterdir()], ["letter.txt"])


if __name__ == "__main__":
    main()
