#!/usr/bin/env python3
"""Cleanups that stand still at a step, are killed there, or meet a world that changed meanwhile."""

import shutil

from cleanup_case import STAGES, CleanupCase
from driver_case import main


class Pause(CleanupCase):
    def facts(self, topic):
        """How far the work is kept: the branch, the index, the commit, the remote, the vault, the directory."""
        if not topic.exists():
            return "removed"
        if any((self.home / "data/Cairnfield").glob("Recovery/*/.env")):
            return "archived"
        if len(self.remote_branches()) > 1:
            return "pushed"
        if not self.git(topic, "status", "--porcelain", "--", "file"):
            return "committed"
        if self.git(topic, "diff", "--cached", "--name-only"):
            return "staged"
        branch = self.git(topic, "symbolic-ref", "--short", "HEAD").decode().strip()
        return "branched" if branch.startswith("cairnfield/recovery/") else "untouched"

    BEFORE = {"preparing": "untouched", "preflight": "untouched", "creatingRecoveryBranch": "untouched",
              "staging": "branched", "committing": "staged", "pushing": "committed", "verifyingRemote": "pushed",
              "archivingLocalFiles": "pushed", "removingWorktree": "archived", "verifyingDeletion": "removed",
              "completed": "removed"}

    def test_the_work_of_the_stage_has_not_begun(self):
        for stage in STAGES:
            with self.subTest(stage=stage):
                topic = self.topic(stage)
                process, told = self.stop_at(topic, stage)
                self.assertEqual(told, STAGES[:STAGES.index(stage) + 1])
                self.assertEqual(self.facts(topic), self.BEFORE[stage])
                receipt = self.resume(process)
                self.assertEqual(receipt["outcome"], "succeeded", receipt)
                self.assertFalse(topic.exists())
                self.assertEqual(self.on_remote(receipt["recoveryBranch"], "new"), "new\n")
                self.forget_kept_work()

    def forget_kept_work(self):
        for branch in self.remote_branches():
            if branch != "main":
                self.git(self.hub, "update-ref", "-d", f"refs/heads/{branch}")
        shutil.rmtree(self.home / "data/Cairnfield/Recovery")
        self.wait_for_the_next_second()

    def test_a_stage_that_never_comes_does_not_stop_it(self):
        receipt = self.clean(self.topic(), "--pause", "creatingPullRequest").result["receipt"]
        self.assertEqual(receipt["outcome"], "succeeded")

    def test_killed_before_any_stage_the_next_attempt_finishes(self):
        for stage in STAGES[:STAGES.index("verifyingDeletion")]:
            with self.subTest(stage=stage):
                topic = self.topic(stage)
                process, _ = self.stop_at(topic, stage)
                self.end(process)
                self.assertEqual((topic / "file").read_text(), "two\n")
                self.assertEqual((topic / "new").read_text(), "new\n")
                self.assertNotIn(str(topic), [each["worktreePath"] for each in self.receipts()])
                self.wait_for_the_next_second()
                self.settle(topic)
                receipt = self.clean(topic).result["receipt"]
                self.assertEqual(receipt["outcome"], "succeeded", receipt)
                self.assertFalse(topic.exists())
                kept = receipt.get("recoveryBranch") or receipt["originalBranch"]
                self.assertEqual(self.on_remote(kept, "new"), "new\n")
                self.assertIn(f"SECRET={stage}\n", self.vault_contents())
                self.wait_for_the_next_second()

    def test_killed_after_the_removal_everything_is_kept_and_nothing_is_listed(self):
        topic = self.topic()
        process, _ = self.stop_at(topic, "verifyingDeletion")
        self.end(process)
        self.assertFalse(topic.exists())
        branch, = [each for each in self.remote_branches() if each != "main"]
        self.assertEqual(self.on_remote(branch, "new"), "new\n")
        self.assertEqual(self.vault_contents(), ["SECRET=topic\n"])
        self.assertEqual(self.verdicts(str(self.root)), {str(self.project): "mainWorktree"})


class Meanwhile(CleanupCase):
    def test_a_file_that_appears_after_the_commit_keeps_the_worktree(self):
        topic = self.topic()
        process, _ = self.stop_at(topic, "removingWorktree")
        (topic / "late").write_text("late\n")
        receipt = self.resume(process)
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("partiallyCompleted", False))
        self.assertEqual((topic / "late").read_text(), "late\n")
        self.assertEqual(self.receipts(), [receipt])

    def test_a_change_after_the_review_stops_it_before_anything_is_done(self):
        topic = self.topic()
        process, _ = self.stop_at(topic, "creatingRecoveryBranch")
        (topic / "late").write_text("late\n")
        receipt = self.resume(process)
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("failed", False))
        self.assertEqual(self.git(topic, "symbolic-ref", "--short", "HEAD").decode().strip(), "topic")
        self.assertEqual(self.remote_branches(), ["main"])

    def test_a_second_program_on_the_same_repository_loses_no_work(self):
        topic, other = self.topic(), self.topic("other")
        process, _ = self.stop_at(topic, "pushing")
        self.wait_for_the_next_second()
        receipts = [self.clean(other).result["receipt"], self.resume(process)]
        self.assertEqual([receipt["outcome"] for receipt in receipts], ["succeeded", "succeeded"], receipts)
        for receipt in receipts:
            self.assertEqual(self.on_remote(receipt["recoveryBranch"], "new"), "new\n")
        # The records are one program's at a time, so those of the other one may be missing; the copies are not.
        copies = (self.home / "data/Cairnfield/Recovery").glob("*/.env")
        self.assertEqual(sorted(copy.read_text() for copy in copies), ["SECRET=other\n", "SECRET=topic\n"])

    def test_a_remote_that_vanishes_before_the_push_keeps_the_worktree(self):
        topic = self.topic()
        process, _ = self.stop_at(topic, "pushing")
        self.hub.rename(self.home / "elsewhere")
        receipt = self.resume(process)
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("partiallyCompleted", False))
        self.assertEqual((topic / "new").read_text(), "new\n")

    def test_a_branch_that_vanishes_from_the_remote_keeps_the_worktree(self):
        topic = self.topic()
        process, _ = self.stop_at(topic, "verifyingRemote")
        branch, = [each for each in self.remote_branches() if each != "main"]
        self.git(self.hub, "update-ref", "-d", f"refs/heads/{branch}")
        receipt = self.resume(process)
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("partiallyCompleted", False))
        self.assertEqual((topic / "new").read_text(), "new\n")


if __name__ == "__main__":
    main()
