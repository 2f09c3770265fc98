#!/usr/bin/env python3
"""The driver on broken and hostile input: what is wrong with one thing shows on that one, never stops the others, and
changes nothing on disk."""

import os
import subprocess
import unittest
from pathlib import Path

from driver_case import DriverCase, main


class BrokenRoots(DriverCase):
    def test_a_missing_root_stays_listed_with_the_reason(self):
        missing = self.home / "gone"
        folder = self.drive("add", str(missing)).result["folders"][0]
        self.assertEqual(folder["path"], str(missing))
        self.assertIn("gone", folder["lastScanError"])
        self.assertNotIn("lastKnownSizeBytes", folder)

    def test_a_missing_root_does_not_stop_the_others(self):
        project = self.repository()
        self.assertEqual(self.verdicts(str(self.home / "gone"), str(self.root)), {str(project): "mainWorktree"})

    def test_a_root_that_goes_keeps_its_last_size(self):
        (self.root / "file").write_text("content\n")
        before = self.drive("add", str(self.root)).result["folders"][0]
        self.root.rename(self.home / "elsewhere")
        after = self.drive("add", str(self.root)).result["folders"][0]
        self.assertEqual(after["lastKnownSizeBytes"], before["lastKnownSizeBytes"])
        self.assertIn("lastScanError", after)

    def test_an_unreadable_root_says_so_and_the_others_are_read(self):
        project = self.repository()
        closed = self.home / "closed"
        closed.mkdir()
        closed.chmod(0)
        answer = self.drive("inspect", str(closed), str(self.root), as_nobody=True)
        self.assertEqual([each["path"] for each in answer.result["worktrees"]], [str(project)])
        folders = self.drive("folders", as_nobody=True).result["folders"]
        self.assertTrue(folders[0]["lastScanError"])
        self.assertNotIn("lastScanError", folders[1])

    def test_an_unreadable_directory_inside_is_counted_and_the_rest_weighed(self):
        (self.root / "open").mkdir()
        (self.root / "open/file").write_bytes(b"x" * 20_000)
        (self.root / "closed").mkdir()
        (self.root / "closed").chmod(0)
        folder = self.drive("add", str(self.root), as_nobody=True).result["folders"][0]
        self.assertEqual(folder["lastScanError"], "1 item(s) could not be read.")
        self.assertGreaterEqual(folder["lastKnownSizeBytes"], 20_000)

    def test_a_file_as_a_root_holds_no_worktrees(self):
        file = self.home / "file"
        file.write_bytes(b"x" * 5_000)
        answer = self.drive("inspect", str(file))
        self.assertEqual(answer.result["worktrees"], [])
        self.assertEqual(self.drive("folders").result["folders"][0]["lastKnownSizeBytes"], file.stat().st_blocks * 512)

    def test_a_root_inside_a_file_is_missing(self):
        file = self.home / "file"
        file.write_text("content\n")
        self.assertEqual([error["case"] for error in self.drive("scan", str(file / "inside")).errors], ["pathMissing"])

    def test_a_name_that_is_too_long_is_an_error_and_no_crash(self):
        answer = self.drive("scan", "/" + "x" * 300)
        self.assertEqual(len(answer.errors), 1)

    def test_the_empty_word_and_the_root_of_all_are_roots_like_others(self):
        self.assertEqual(self.drive("scan", "").result["url"], str(self.home))

    def test_a_link_that_leads_to_itself_is_no_place_to_search(self):
        loop = self.root / "loop"
        loop.symlink_to(loop)
        project = self.repository()
        self.assertEqual(self.verdicts(str(self.root), str(loop)), {str(project): "mainWorktree"})


class BrokenRepositories(DriverCase):
    def setUp(self):
        super().setUp()
        self.sound = self.repository("sound")

    def assert_only_the_sound_one_is_listed(self):
        self.assertEqual(self.verdicts(str(self.root)), {str(self.sound): "mainWorktree"})

    def test_a_git_file_that_points_nowhere_leaves_no_trace(self):
        for name, text in (("nowhere", "gitdir: /nowhere/at/all\n"), ("empty", ""), ("noise", "\0\xff" * 100)):
            (self.root / name).mkdir()
            (self.root / name / ".git").write_text(text, encoding="latin-1")
        self.assert_only_the_sound_one_is_listed()

    def test_an_empty_git_directory_leaves_no_trace(self):
        (self.root / "hollow/.git").mkdir(parents=True)
        self.assert_only_the_sound_one_is_listed()

    def test_a_git_link_in_a_circle_leaves_no_trace(self):
        (self.root / "circle").mkdir()
        (self.root / "circle/.git").symlink_to(".git")
        self.assert_only_the_sound_one_is_listed()

    @unittest.skipUnless(os.geteuid() == 0, "giving a repository to another user takes root")
    def test_a_repository_of_another_user_leaves_no_trace(self):
        foreign = self.repository("foreign")
        for folder, folders, files in os.walk(foreign):
            for name in [".", *folders, *files]:
                os.lchown(os.path.join(folder, name), 12345, 12345)
        self.assert_only_the_sound_one_is_listed()

    def test_a_broken_configuration_leaves_no_trace(self):
        broken = self.repository("broken")
        (broken / ".git/config").write_text("[core\nthis is no configuration")
        self.assert_only_the_sound_one_is_listed()

    def test_a_corrupted_index_shows_on_its_worktree_alone(self):
        topic = self.worktree(self.sound, "topic")
        other = self.worktree(self.sound, "other")
        index = Path(self.git(topic, "rev-parse", "--absolute-git-dir").decode().strip()) / "index"
        index.write_bytes(b"DIRC" + b"\xff" * 60)
        worktrees = {each["path"]: each for each in self.drive("inspect", str(self.root)).result["worktrees"]}
        self.assertEqual(worktrees[str(topic)]["safety"], "inaccessible")
        self.assertIn("index", worktrees[str(topic)]["inspectionError"])
        self.assertEqual(worktrees[str(other)]["safety"], "cleanDisposable")
        self.assertNotIn("inspectionError", worktrees[str(other)])

    def test_a_vanished_worktree_shows_on_that_one_alone(self):
        topic = self.worktree(self.sound, "topic")
        topic.rename(self.home / "elsewhere")
        worktrees = {each["path"]: each for each in self.drive("inspect", str(self.root)).result["worktrees"]}
        self.assertEqual(worktrees[str(topic)]["safety"], "inaccessible")
        self.assertEqual(worktrees[str(topic)]["inspectionError"], "The worktree path no longer exists.")
        self.assertEqual(worktrees[str(self.sound)]["safety"], "mainWorktree")

    def test_a_missing_object_is_never_taken_for_safe(self):
        topic = self.worktree(self.sound, "topic")
        (topic / "more").write_text("more\n")
        self.git(topic, "add", "more")
        self.git(topic, "commit", "--quiet", "--message", "More")
        head = self.git(topic, "rev-parse", "HEAD").decode().strip()
        (self.sound / ".git/objects" / head[:2] / head[2:]).unlink()
        self.settle(topic)
        worktrees = {each["path"]: each for each in self.drive("inspect", str(self.root)).result["worktrees"]}
        self.assertNotIn(worktrees[str(topic)]["disposition"], ("safeToClean", "preservedRemotely"))

    def test_hooks_and_filters_of_a_repository_are_asked_for_nothing_that_writes(self):
        mark = self.home / "ran"
        for hook in ("post-checkout", "pre-commit", "post-index-change", "reference-transaction"):
            path = self.sound / ".git/hooks" / hook
            path.parent.mkdir(exist_ok=True)
            path.write_text(f"#!/bin/sh\ntouch '{mark}'\n")
            path.chmod(0o755)
        self.assert_only_the_sound_one_is_listed()
        self.assertFalse(mark.exists(), "an inspection ran a hook")


class Names(DriverCase):
    AWKWARD = [b"with blank", b"new\nline", b'quo"te\'s', b"-leading", b"--force", b"$(touch ran)", b"caf\xc3\xa9",
               b"caf\xe9", b"\xff\xfe", b"tab\there", b"back\\slash", b"%2e%2e", b"*?[", b"\xe2\x80\xaexe.txt"]

    def test_awkward_names_are_carried_through_and_printed_as_text(self):
        project = self.repository()
        for number, name in enumerate(self.AWKWARD):
            path = os.path.join(os.fsencode(self.root), b"w", name)
            subprocess.run(["git", "worktree", "add", "--quiet", "-b", f"topic-{number}", path], cwd=project,
                           env=self.environment, check=True, capture_output=True)
            os.utime(path, (1_700_000_000, 1_700_000_000))
            os.utime(os.path.join(path, b".git"), (1_700_000_000, 1_700_000_000))
        worktrees = {each["branch"]: each for each in self.drive("inspect", str(self.root), "--sizes").result["worktrees"]}
        for number, name in enumerate(self.AWKWARD):
            found = worktrees[f"topic-{number}"]
            # Each was really entered: a path that lost a byte on the way would have vanished.
            self.assertEqual(found["safety"], "cleanDisposable", found)
            self.assertGreater(found["sizeBytes"], 0, found)
            self.assertEqual(found["path"], str(self.root / "w") + "/" + name.decode("utf-8", "replace"))
        self.assertFalse(list(self.home.rglob("ran")))

    def test_a_watched_folder_whose_name_is_no_text_is_found_again(self):
        folder = os.path.join(os.fsencode(self.root), b"caf\xe9")
        os.mkdir(folder)
        with open(os.path.join(folder, b"file"), "wb") as file:
            file.write(b"x" * 30_000)
        first = self.drive("add", folder).result["folders"][0]
        again = self.drive("add", folder).result["folders"]
        self.assertEqual([each["id"] for each in again], [first["id"]])
        self.assertGreaterEqual(again[0]["lastKnownSizeBytes"], 30_000)


class StoredFiles(DriverCase):
    def test_stored_files_that_are_broken_read_as_nothing(self):
        self.drive("--set", "reconcileIntervalHours=7", "add", str(self.root))
        for content in (b"", b"{", b"[]", b'{"folders": 7}', b"\xff\xfe\x00", b"[" * 100_000):
            for file in [*(self.home / "data/Cairnfield").iterdir(), *(self.home / "config/Cairnfield").iterdir()]:
                file.write_bytes(content)
            self.assertEqual(self.drive("folders").result["folders"], [], content[:20])

    def test_a_folder_that_cannot_be_stored_is_an_error_and_is_not_listed(self):
        (self.home / "data").write_text("a file where the folder should be\n")
        answer = self.drive("add", str(self.root))
        self.assertEqual([error["case"] for error in answer.errors], ["folderError"])
        self.assertTrue(answer.errors[0]["description"])
        self.assertEqual(answer.result["folders"], [])


class NoGit(DriverCase):
    def test_a_git_that_does_not_answer_loses_no_more_than_its_answers(self):
        self.repository()
        broken = self.home / "git"
        broken.write_text("#!/bin/sh\nexit 1\n")
        broken.chmod(0o755)
        answer = self.drive("--set", f'gitPathOverride="{broken}"', "inspect", str(self.root))
        self.assertEqual(answer.result["worktrees"], [])

    def test_a_git_that_prints_noise_breaks_nothing(self):
        self.repository()
        noisy = self.home / "git"
        noisy.write_text("#!/bin/sh\nhead -c 100000 /dev/urandom\n")
        noisy.chmod(0o755)
        self.drive("--set", f'gitPathOverride="{noisy}"', "inspect", str(self.root)).result


class ReadOnly(DriverCase):
    def test_an_inspection_changes_not_one_byte_and_no_time(self):
        project = self.repository()
        self.worktree(project, "clean")
        edited = self.worktree(project, "edited")
        (edited / "file").write_text("edited\n")
        (edited / "new").write_text("new\n")
        touched = self.worktree(project, "touched")
        os.utime(touched / "file")  # git would like to write down that this is unchanged
        locked = self.worktree(project, "locked")
        self.git(project, "worktree", "lock", str(locked))
        gone = self.worktree(project, "gone")
        gone.rename(self.home / "elsewhere")
        before = self.picture_of(self.root)
        self.drive("inspect", str(self.root), "--sizes")
        self.drive("inspect", str(self.root), "--sizes", "--pull-requests")
        self.assertEqual(self.picture_of(self.root), before)


if __name__ == "__main__":
    main()
