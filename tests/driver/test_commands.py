#!/usr/bin/env python3
"""The driver's commands on ordinary input, and the words that it refuses."""

import os
import stat
import subprocess

from driver_case import DRIVER, DriverCase, main


class WrongWords(DriverCase):
    def refused(self, *words):
        answer = self.drive(*words, status=2)
        self.assertEqual(answer.lines, [])
        self.assertIn("Usage: cairnfield-driver", answer.log)
        self.assertFalse((self.home / "config").exists(), "refused words changed a setting")

    def test_no_command_and_unknown_ones_are_refused(self):
        self.refused()
        self.refused("inspekt", str(self.root))

    def test_unknown_and_missing_words_are_refused(self):
        self.refused("add")
        self.refused("folders", "all")
        self.refused("scan")
        self.refused("scan", "a", "b")
        self.refused("scan", "--quick", "a")
        self.refused("inspect", "--sizes")
        self.refused("inspect", str(self.root), "--pin")
        self.refused("remove", "not-an-identifier")
        self.refused("parse", "log")

    def test_unknown_settings_and_values_of_another_type_are_refused(self):
        for words in ("colour=1", "notificationsEnabled=1", "reconcileIntervalHours=\"6\"", "reconcileIntervalHours=six",
                      "thresholdMode=\"clever\"", "warningPercentage=true", "noSign"):
            self.refused("--set", words, "folders")
        self.refused("--set")


class Folders(DriverCase):
    def test_a_fresh_home_has_no_folders(self):
        self.assertEqual(self.drive("folders").result["folders"], [])

    def test_an_added_folder_is_scanned_and_kept(self):
        (self.root / "data").write_bytes(b"x" * 100_000)
        added = self.drive("add", str(self.root)).result["folders"]
        self.assertEqual([folder["path"] for folder in added], [str(self.root)])
        self.assertGreaterEqual(added[0]["lastKnownSizeBytes"], 100_000)
        self.assertNotIn("lastScanError", added[0])
        self.assertRegex(added[0]["lastScanAt"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertEqual(self.drive("folders").result["folders"], added)

    def test_a_relative_root_is_taken_from_the_current_directory(self):
        self.assertEqual(self.drive("add", "src").result["folders"][0]["path"], str(self.root))

    def test_adding_a_folder_again_adds_nothing(self):
        first = self.drive("add", str(self.root)).result["folders"]
        again = self.drive("add", str(self.root) + "/", str(self.root / "." / ".." / "src")).result["folders"]
        self.assertEqual([folder["id"] for folder in again], [first[0]["id"]])

    def test_a_removed_folder_is_gone_and_an_unknown_identity_changes_nothing(self):
        folder = self.drive("add", str(self.root)).result["folders"][0]
        unknown = "00000000-0000-4000-8000-000000000000"
        self.assertEqual(len(self.drive("remove", unknown).result["folders"]), 1)
        self.assertEqual(self.drive("remove", folder["id"]).result["folders"], [])
        self.assertEqual(self.drive("folders").result["folders"], [])
        self.assertTrue(self.root.is_dir())

    def test_stored_files_are_for_the_user_alone(self):
        self.drive("--set", "reconcileIntervalHours=7", "add", str(self.root))
        for folder in ("data", "config"):
            ours = self.home / folder / "Cairnfield"
            self.assertEqual(stat.S_IMODE(ours.stat().st_mode), 0o700)
            self.assertTrue(list(ours.iterdir()))


class Scan(DriverCase):
    def test_a_directory_is_weighed_by_its_blocks(self):
        (self.root / "deep/er").mkdir(parents=True)
        (self.root / "deep/er/file").write_bytes(b"x" * 50_000)
        os.symlink("/usr", self.root / "link")
        with open(self.root / "hole", "wb") as hole:
            hole.truncate(10_000_000)
        result = self.drive("scan", str(self.root)).result
        below = [self.root / "deep", self.root / "deep/er", self.root / "deep/er/file", self.root / "hole"]
        self.assertEqual(result["totalBytes"], sum(path.lstat().st_blocks * 512 for path in below))
        self.assertEqual(result["fileCount"], 2)
        self.assertEqual(result["url"], str(self.root))
        self.assertEqual(result["permissionErrorPaths"], [])

    def test_a_file_as_a_root_is_weighed_alone(self):
        file = self.root / "file"
        file.write_bytes(b"x" * 9_000)
        self.assertEqual(self.drive("scan", "--fresh", str(file)).result["totalBytes"], file.stat().st_blocks * 512)

    def test_a_missing_path_is_the_error_that_people_see(self):
        answer = self.drive("scan", str(self.root / "gone"))
        self.assertEqual([line["event"] for line in answer.lines], ["error"])
        self.assertEqual(answer.errors[0]["case"], "pathMissing")
        self.assertIn("gone", answer.errors[0]["description"])
        self.assertTrue(answer.errors[0]["suggestion"])

    def test_an_unreadable_directory_is_the_error_that_people_see(self):
        closed = self.root / "closed"
        closed.mkdir()
        closed.chmod(0)
        answer = self.drive("scan", str(closed), as_nobody=True)
        self.assertEqual([error["case"] for error in answer.errors], ["permissionDenied"])

    def test_a_path_that_begins_with_dashes_comes_after_two_of_them(self):
        (self.home / "--fresh").mkdir()
        self.assertEqual(self.drive("scan", "--", "--fresh").result["url"], str(self.home / "--fresh"))


class Inspect(DriverCase):
    def test_a_worktree_has_its_fields_its_verdict_and_its_project(self):
        project = self.repository()
        topic = self.worktree(project, "topic")
        result = self.drive("inspect", str(self.root)).result
        main_one, linked = result["worktrees"]
        self.assertEqual((main_one["path"], main_one["safety"], main_one["disposition"]),
                         (str(project), "mainWorktree", "cannotClean"))
        self.assertEqual((linked["path"], linked["id"], linked["branch"], linked["displayBranch"]),
                         (str(topic), str(topic), "topic", "topic"))
        self.assertEqual((linked["safety"], linked["disposition"]), ("cleanDisposable", "safeToClean"))
        self.assertEqual(linked["repositoryRoot"], str(project))
        self.assertEqual(linked["headSHA"], self.git(topic, "rev-parse", "HEAD").decode().strip())
        self.assertEqual(linked["tracking"]["uniqueCommitCount"], 0)
        self.assertNotIn("pullRequest", linked)
        self.assertEqual([(each["name"], each["worktreeCount"], each["linkedWorktreeCount"]) for each in result["projects"]],
                         [("project", 2, 1)])
        self.assertGreater(result["seconds"], 0)

    def test_sizes_are_measured_when_they_are_asked_for(self):
        project = self.repository()
        (project / "file").write_bytes(b"x" * 200_000)
        self.git(project, "commit", "--quiet", "--all", "--message", "Grow")
        self.worktree(project, "topic")
        unsized = self.drive("inspect", str(self.root)).result
        self.assertEqual([each["sizeBytes"] for each in unsized["worktrees"]], [0, 0])
        self.assertEqual((unsized["reclaimable"], unsized["projects"][0]["isFullySized"]), (0, False))
        sized = self.drive("inspect", "--sizes", str(self.root)).result
        sizes = [each["sizeBytes"] for each in sized["worktrees"]]
        self.assertTrue(all(size >= 200_000 for size in sizes), sizes)
        self.assertEqual((sized["reclaimable"], sized["projects"][0]["isFullySized"]), (sizes[1], True))
        self.assertEqual(sized["projects"][0]["totalBytes"], sum(sizes))

    def test_a_pin_is_kept(self):
        topic = self.worktree(self.repository(), "topic")
        pinned = self.drive("inspect", str(self.root), "--pin", str(topic)).result["worktrees"]
        self.assertEqual([each["isPinned"] for each in pinned], [False, True])
        again = self.drive("inspect", str(self.root)).result["worktrees"]
        self.assertEqual([each["isPinned"] for each in again], [False, True])

    def test_pull_requests_cannot_be_looked_up_without_gh(self):
        self.worktree(self.repository(), "topic")
        answer = self.drive("inspect", str(self.root), "--pull-requests").result
        self.assertEqual(["pullRequest" in each for each in answer["worktrees"]], [False, False])

    def test_folders_that_were_added_before_are_inspected_too(self):
        self.repository("one")
        self.drive("add", str(self.root))
        other = self.home / "other"
        other.mkdir()
        names = {each["repositoryName"] for each in self.drive("inspect", str(other)).result["worktrees"]}
        self.assertEqual(names, {"one"})


class Integrations(DriverCase):
    def test_git_is_found_where_it_is(self):
        result = self.drive("integrations").result
        self.assertEqual(result["gitPath"], "/usr/bin/git")
        self.assertNotIn("gitStatusMessage", result)
        self.assertIn("isInstalled", result["githubStatus"])

    def test_a_chosen_git_outranks_the_search_and_is_remembered(self):
        chosen = self.home / "my git"
        chosen.write_text("#!/bin/sh\nexec /usr/bin/git \"$@\"\n")
        chosen.chmod(0o755)
        words = ("--set", f"gitPathOverride=\"{chosen}\"", "integrations")
        self.assertEqual(self.drive(*words).result["gitPath"], str(chosen))
        self.assertEqual(self.drive("integrations").result["gitPath"], str(chosen))
        self.assertEqual(self.drive("--set", "gitPathOverride=null", "integrations").result["gitPath"], "/usr/bin/git")


class Parse(DriverCase):
    def parse(self, what, stdin):
        return self.drive("parse", what, stdin=stdin).result

    def test_a_real_status_is_read(self):
        project = self.repository()
        (project / "file").write_text("two\n")
        (project / "new").write_text("new\n")
        record = self.parse("status", self.git(project, "status", "--porcelain=v2", "-z", "--untracked-files=all"))
        self.assertEqual((record["modifiedCount"], record["untrackedCount"]), (1, 1))
        self.assertEqual((record["changedPaths"], record["untrackedPaths"]), (["file"], ["new"]))

    def test_a_real_worktree_list_is_read(self):
        project = self.repository()
        topic = self.worktree(project, "topic")
        entries = self.parse("worktree-list", self.git(project, "worktree", "list", "--porcelain", "-z"))["entries"]
        self.assertEqual([(entry["path"], entry["isMain"]) for entry in entries],
                         [(str(project), True), (str(topic), False)])

    def test_a_submodule_at_another_commit_needs_review(self):
        self.assertTrue(self.parse("submodules", b"+" + b"0" * 40 + b" lib (heads/main)\n")["submodulesNeedReview"])
        self.assertFalse(self.parse("submodules", b" " + b"0" * 40 + b" lib (heads/main)\n")["submodulesNeedReview"])

    def test_any_bytes_give_a_record(self):
        noise = bytes(range(256)) * 64
        for what in ("status", "worktree-list", "submodules"):
            self.parse(what, noise)
            self.parse(what, b"")


class Output(DriverCase):
    def test_a_reader_that_goes_away_is_a_failure_and_no_crash(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([DRIVER, "folders"], env=self.environment, stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertIn(b"cairnfield-driver: ", done.stderr)


if __name__ == "__main__":
    main()
