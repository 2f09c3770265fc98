#!/usr/bin/env python3
"""Preflight and cleanup of real worktrees with a real remote, their records, and the vault."""

import os
import stat
import subprocess

from cleanup_case import MESSAGE, STAGES, CleanupCase
from driver_case import main

RECORD_OF_PLAN = {"worktree", "trackedPathsToCommit", "untrackedPathsToCommit", "filesToArchive", "excludedSensitiveFiles",
                  "commitMessage", "recoveryBranch", "baseBranch", "remoteName", "createPullRequest", "retentionDays"}


class Words(CleanupCase):
    def refused(self, *words):
        answer = self.drive(*words, status=2)
        self.assertEqual(answer.lines, [])
        self.assertIn("Usage: cairnfield-driver", answer.log)

    def test_wrong_words_are_refused(self):
        root = ("--root", str(self.root))
        for command in ("preflight", "clean"):
            self.refused(command)
            self.refused(command, "topic")
            self.refused(command, *root)
            self.refused(command, "topic", "--root")
            self.refused(command, "topic", "--root", "--", str(self.root))
            self.refused(command, "topic", "other", *root)
            self.refused(command, "topic", *root, "--force")
        self.refused("preflight", "topic", *root, "--no-vault")
        self.refused("clean", "topic", *root, "--pause", "thinking")
        self.refused("clean", "topic", *root, "--pause")
        self.refused("clean", "topic", *root, "--message", "one", "--message", "two")
        self.refused("receipts", "all")
        self.refused("vault", "all")
        self.refused("vault-restore", "not-an-identifier", "there")
        self.refused("vault-restore", "00000000-0000-4000-8000-000000000000")
        self.refused("vault-remove")
        self.assertFalse((self.home / "data").exists(), "refused words did something")

    def test_an_unknown_worktree_is_refused(self):
        self.topic()
        self.refused("preflight", str(self.root / "gone"), "--root", str(self.root))
        self.refused("clean", str(self.root / "gone"), "--root", str(self.root))
        self.assertEqual(self.receipts(), [])

    def test_an_unknown_vault_entry_is_refused(self):
        unknown = "00000000-0000-4000-8000-000000000000"
        self.refused("vault-remove", unknown)
        self.refused("vault-restore", unknown, "there")
        self.assertFalse((self.home / "there").exists())

    def test_several_roots_may_stand_behind_one_word_or_several(self):
        topic = self.topic()
        other = self.home / "other"
        other.mkdir()
        for roots in (("--root", str(other), str(self.root)), ("--root", str(other), "--root", str(self.root))):
            self.assertTrue(self.drive("preflight", str(topic), *roots).result["report"]["passed"])


class Preflight(CleanupCase):
    def test_plan_and_report_have_their_fields(self):
        topic = self.topic()
        before = self.picture_of(topic)
        result = self.preflight(topic).result
        plan, report = result["plan"], result["report"]
        self.assertEqual(set(plan), RECORD_OF_PLAN)
        self.assertEqual(plan["worktree"]["path"], str(topic))
        self.assertEqual((plan["trackedPathsToCommit"], plan["untrackedPathsToCommit"]), (["file"], ["new"]))
        self.assertEqual([entry["name"] for entry in plan["excludedSensitiveFiles"]], [".env"])
        self.assertEqual(plan["commitMessage"], MESSAGE)
        self.assertRegex(plan["recoveryBranch"], r"^cairnfield/recovery/project/\d{8}-\d{6}$")
        self.assertEqual((plan["remoteName"], plan["createPullRequest"]), ("origin", False))
        self.assertEqual(set(report), {"passed", "failures", "warnings", "fingerprint", "remoteIsWritable", "resolvedBaseBranch"})
        self.assertEqual((report["passed"], report["failures"], report["remoteIsWritable"]), (True, [], True))
        self.assertEqual(report["resolvedBaseBranch"], "main")
        self.assertRegex(report["fingerprint"]["value"], r"^[0-9a-f]{64}$")
        self.assertEqual(self.picture_of(topic), before)
        self.assertEqual(self.receipts(), [])

    def test_the_plan_follows_the_settings(self):
        topic = self.topic()
        plan = self.preflight(topic, "--set", 'recoveryBranchPrefix="kept"', "--set", "recoveryVaultRetentionDays=7",
                              "--set", "preserveSmallLocalFiles=false", "--set", "createDraftPullRequests=true").result["plan"]
        self.assertTrue(plan["recoveryBranch"].startswith("kept/project/"))
        self.assertEqual((plan["retentionDays"], plan["filesToArchive"]), (7, []))
        self.assertFalse(plan["createPullRequest"], "nobody is signed in")
        self.drive("--set", "preserveSmallLocalFiles=true", "folders")
        self.assertEqual([entry["name"] for entry in self.preflight(topic).result["plan"]["filesToArchive"]], [".env"])

    def test_the_look_inside_tells_what_the_record_of_a_worktree_does_not(self):
        topic = self.topic()
        self.write_secrets_below_the_top(topic)
        look = self.preflight(topic).result["look"]
        self.assertEqual([(entry["relativePath"], entry["sizeBytes"]) for entry in look["nestedSensitiveFiles"]],
                         [("src/api/.env.local", 6), ("src/web/prod.key", 7)])
        self.assertEqual(set(look), {"nestedSensitiveFiles"})
        for name in ("file", "new", ".gitignore"):
            (topic / name).unlink()
        self.settle(topic)
        self.assertEqual(self.preflight(topic).result["look"]["missingFiles"], {"missing": 2, "tracked": 2})

    def test_what_is_blocked_says_why(self):
        locked = self.topic()
        self.git(self.project, "worktree", "lock", str(locked))
        for worktree in (locked, self.project):
            report = self.preflight(worktree).result["report"]
            self.assertFalse(report["passed"])
            self.assertEqual(len(report["failures"]), 1)
            self.assertNotIn("fingerprint", report)
            self.assertFalse(report["remoteIsWritable"])

    def test_a_remote_that_is_gone_blocks(self):
        topic = self.topic()
        self.hub.rename(self.home / "elsewhere")
        report = self.preflight(topic).result["report"]
        self.assertFalse(report["passed"])
        self.assertIn("origin", report["failures"][0])

    def test_without_git_the_report_says_so(self):
        topic = self.topic()
        answer = self.without_program("/usr/bin/git", "preflight", str(topic), "--root", str(self.root))
        report = answer.result["report"]
        self.assertEqual((report["passed"], report["warnings"], report["remoteIsWritable"]), (False, [], False))
        self.assertEqual([error["case"] for error in answer.errors], ["worktreeRefreshError"])
        self.assertEqual(report["failures"], [answer.errors[0]["description"]])


class Clean(CleanupCase):
    def test_a_whole_cleanup_keeps_everything_and_tells_where(self):
        topic = self.topic()
        answer = self.clean(topic)
        told = [line for line in answer.lines if line["event"] == "progress"]
        self.assertEqual([line["stage"] for line in told], STAGES)
        receipt = answer.result["receipt"]
        self.assertEqual((receipt["outcome"], receipt["finalStage"]), ("succeeded", "completed"))
        self.assertTrue(receipt["removalSucceeded"])
        self.assertEqual((receipt["worktreePath"], receipt["repositoryRoot"]), (str(topic), str(self.project)))
        self.assertGreater(receipt["reclaimedBytes"], 0)
        self.assertEqual(receipt["reclaimedBytes"], receipt["sizeBeforeBytes"])
        self.assertNotIn("errorSummary", receipt)
        self.assertNotIn("pullRequestNumber", receipt)
        self.assertFalse(topic.exists())

        branch = receipt["recoveryBranch"]
        self.assertEqual(told[2]["detail"], branch)
        self.assertEqual(self.on_remote(branch, "file"), "two\n")
        self.assertEqual(self.on_remote(branch, "new"), "new\n")
        self.assertEqual(self.git(self.hub, "rev-parse", branch).decode().strip(), receipt["preservedCommitSHA"])
        self.assertEqual(self.git(self.hub, "log", "-1", "--format=%s", branch).decode().strip(), MESSAGE)
        self.assertNotIn(".env", self.git(self.hub, "ls-tree", "-r", "--name-only", branch).decode().split())
        self.assertEqual(self.receipts(), [receipt])
        self.assertEqual([entry["storedPath"] for entry in self.vault()], receipt["recoveryVaultPaths"])

    def test_a_vault_file_comes_back_and_goes(self):
        self.clean(self.topic())
        entry, = self.vault()
        self.assertEqual((entry["relativePath"], entry["repositoryName"]), (".env", "project"))
        destination = self.home / "restored"
        self.assertEqual(self.drive("vault-restore", entry["id"], "restored").result["entries"], [entry])
        self.assertEqual(destination.read_text(), "SECRET=topic\n")
        again = self.drive("vault-restore", entry["id"], str(destination))
        self.assertEqual([line["event"] for line in again.lines], ["error"], "something is there already")
        self.assertEqual(destination.read_text(), "SECRET=topic\n")
        self.assertEqual(stat.S_IMODE(os.stat(entry["storedPath"]).st_mode), 0o600)
        self.assertEqual(self.drive("vault-remove", entry["id"]).result["entries"], [])
        self.assertFalse(os.path.exists(entry["storedPath"]))
        self.assertEqual(self.vault(), [])

    def test_untracked_files_that_are_not_included_keep_the_worktree(self):
        topic = self.topic()
        receipt = self.clean(topic, "--no-untracked").result["receipt"]
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("partiallyCompleted", False))
        self.assertEqual(self.on_remote(receipt["recoveryBranch"], "file"), "two\n")
        names = self.git(self.hub, "ls-tree", "--name-only", receipt["recoveryBranch"]).decode().split()
        self.assertNotIn("new", names)
        self.assertEqual((topic / "new").read_text(), "new\n")

    def test_the_vault_is_left_alone_when_it_is_not_wanted(self):
        receipt = self.clean(self.topic(), "--no-vault").result["receipt"]
        self.assertEqual((receipt["outcome"], receipt["recoveryVaultPaths"]), ("succeeded", []))
        self.assertEqual(self.vault(), [])

    def test_secrets_below_the_top_go_to_the_vault_unless_they_are_not_wanted(self):
        for words, kept in (([], {".env", "src/api/.env.local", "src/web/prod.key"}), (["--no-nested-vault"], {".env"}),
                            (["--no-vault"], set())):
            with self.subTest(words=words):
                for entry in self.vault():
                    self.drive("vault-remove", entry["id"])
                topic = self.topic("topic" + "".join(words))
                self.write_secrets_below_the_top(topic)
                answer = self.clean(topic, *words)
                self.assertEqual(answer.result["receipt"]["outcome"], "succeeded", answer.result)
                self.assertEqual({entry["relativePath"] for entry in self.vault()}, kept)
                details = [line.get("detail") for line in answer.lines if line.get("stage") == "archivingLocalFiles"]
                self.assertEqual(details, [f"{len(kept)} file(s)"] if kept else [])
                self.wait_for_the_next_second()

    def test_a_secret_below_the_top_that_the_vault_does_not_take_stops_nothing(self):
        topic = self.worktree(self.project, "topic")
        self.write_secrets_below_the_top(topic)
        answer = self.drive("--set", "recoveryVaultMaxFileBytes=6", "clean", str(topic), "--root", str(self.root))
        self.assertEqual(answer.result["receipt"]["outcome"], "succeeded", answer.result)
        self.assertEqual([entry["relativePath"] for entry in self.vault()], ["src/api/.env.local"])

    def test_nothing_begins_where_something_is_mounted_among_ignored_files(self):
        topic = self.topic()
        (topic / "scratch.key" / "inner").mkdir(parents=True)
        (topic / "scratch.key" / "outer").write_text("kept\n")
        self.settle(topic)
        answer = self.with_something_mounted_on(topic / "scratch.key" / "inner", "clean", str(topic), "--root", str(self.root))
        receipt = answer.result["receipt"]
        self.assertEqual(receipt["outcome"], "failed")
        self.assertEqual(receipt["errorSummary"], "The worktree cannot be removed. Something is mounted inside it: "
                                                  f"{topic / 'scratch.key' / 'inner'}.")
        self.assertEqual((topic / "new").read_text(), "new\n")
        self.assertEqual(self.remote_branches(), ["main"])

    def test_a_secret_of_any_size_goes_to_the_vault_or_nothing_goes(self):
        topic = self.topic()
        answer = self.drive("--set", "recoveryVaultMaxFileBytes=3", "clean", str(topic), "--root", str(self.root))
        receipt = answer.result["receipt"]
        self.assertEqual(receipt["outcome"], "partiallyCompleted", "the vault refuses it")
        self.assertEqual((topic / ".env").read_text(), "SECRET=topic\n")

    def test_the_message_is_the_commits(self):
        receipt = self.clean(self.topic(), "--message", "--keep: this\n\nand why").result["receipt"]
        text = self.git(self.hub, "log", "-1", "--format=%B", receipt["recoveryBranch"]).decode()
        self.assertEqual(text.rstrip("\n"), "--keep: this\n\nand why")

    def test_without_work_to_keep_nothing_is_pushed(self):
        topic = self.worktree(self.project, "topic")
        answer = self.clean(topic)
        stages = [line["stage"] for line in answer.lines if line["event"] == "progress"]
        self.assertEqual(stages, ["preparing", "preflight", "removingWorktree", "verifyingDeletion", "completed"])
        receipt = answer.result["receipt"]
        self.assertEqual(receipt["outcome"], "succeeded")
        self.assertNotIn("recoveryBranch", receipt)
        self.assertEqual(self.remote_branches(), ["main"])

    def test_what_is_blocked_is_left_and_told(self):
        topic = self.topic()
        self.git(self.project, "worktree", "lock", str(topic))
        failure = self.preflight(topic).result["report"]["failures"][0]
        before = self.picture_of(topic)
        answer = self.clean(topic)
        self.assertEqual([line["stage"] for line in answer.lines if line["event"] == "progress"], ["preparing", "preflight"])
        receipt = answer.result["receipt"]
        self.assertEqual((receipt["outcome"], receipt["errorSummary"]), ("failed", failure))
        self.assertEqual(self.picture_of(topic), before)
        self.assertEqual(self.receipts(), [], "nothing was tried")

    def test_a_pull_request_is_not_opened_when_nobody_is_signed_in(self):
        receipt = self.clean(self.topic(), "--pull-request").result["receipt"]
        self.assertEqual(receipt["outcome"], "succeeded")
        self.assertNotIn("pullRequestNumber", receipt)

    def test_the_end_is_a_notification_when_they_are_on(self):
        topic, locked = self.topic(), self.topic("locked")
        self.drive("--set", "notificationsEnabled=true", "folders")
        answer = self.clean(topic)
        told, = [line for line in answer.lines if line["event"] == "notification"]
        receipt = answer.result["receipt"]
        self.assertEqual((told["title"], told["identifier"]), ("Cleanup complete", "cleanup." + receipt["id"]))
        self.assertRegex(told["body"], r"^Reclaimed about .+ from project\.$")
        self.git(self.project, "worktree", "lock", str(locked))
        answer = self.clean(locked)
        told, = [line for line in answer.lines if line["event"] == "notification"]
        self.assertEqual((told["title"], told["body"]),
                         ("Cleanup stopped, work is safe", answer.result["receipt"]["errorSummary"]))

    def test_without_git_there_is_no_receipt(self):
        topic = self.topic()
        answer = self.without_program("/usr/bin/git", "clean", str(topic), "--root", str(self.root))
        self.assertEqual(answer.result, {"event": "result"})
        self.assertEqual([line["event"] for line in answer.lines], ["error", "result"])
        self.assertEqual((topic / "new").read_text(), "new\n")
        self.assertEqual(self.receipts(), [])


class Names(CleanupCase):
    AWKWARD = [b"with blank", b"new\nline", b'quo"te\'s', b"--force", b"$(touch ran)", b"caf\xe9", b"*?[",
               b":(exclude)x", b"\xe2\x80\xaexe.txt"]

    def test_awkward_names_come_through_whole(self):
        for number, name in enumerate(self.AWKWARD):
            path = os.path.join(os.fsencode(self.root), b"w", name)
            subprocess.run(["git", "worktree", "add", "--quiet", "-b", f"topic-{number}", path], cwd=self.project,
                           env=self.environment, check=True, capture_output=True)
            for file in self.AWKWARD:
                with open(os.path.join(path, file), "wb") as content:
                    content.write(b"made of " + file)
            with open(os.path.join(path, b".env" + name), "wb") as secret:
                secret.write(b"secret of " + name)
            self.settle(os.fsdecode(path))
            words = ["clean", "--root", str(self.root), "--", path]
            receipt = self.drive(*words).result["receipt"]
            self.assertEqual(receipt["outcome"], "succeeded", receipt)
            self.assertEqual(receipt["worktreePath"], str(self.root / "w") + "/" + name.decode("utf-8", "replace"))
            self.assertFalse(os.path.lexists(path))
            for file in self.AWKWARD:
                kept = self.git(self.hub, "show", os.fsencode(receipt["recoveryBranch"]) + b":" + file)
                self.assertEqual(kept, b"made of " + file)
            self.assertEqual(len(receipt["recoveryVaultPaths"]), 1)
            self.wait_for_the_next_second()
        stored = [file.read_bytes() for file in (self.home / "data").rglob("*") if file.is_file()]
        for name in self.AWKWARD:
            self.assertIn(b"secret of " + name, stored)
        self.assertFalse(list(self.home.rglob("ran")))


if __name__ == "__main__":
    main()
