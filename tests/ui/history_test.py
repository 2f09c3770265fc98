"""The screen of past cleanups: every attempt with where its work went, by name and by keyboard."""

import os
import shutil

from cairnfield_ui import UITestCase, main
from records import receipt, write_receipts

COMMIT = "89abcdef0123456789abcdef0123456789abcdef"


class History(UITestCase):
    def setUp(self):
        super().setUp()
        shutil.rmtree(self.data(), ignore_errors=True)

    def start(self, environment=None):
        app = super().start(environment)
        app.key("ctrl+6")
        return app

    def start_with_receipts(self):
        write_receipts(self.data(), [
            receipt("atlas", "failed", "2026-03-01T10:00:00Z", originalBranch="tariffs",
                    errorSummary="The hook refused.\n<b>line two</b>\u202e\n"),
            receipt("zephyr", "cancelled", "2026-01-01T10:00:00Z", finalStage="cancelled"),
            receipt("beacon", "succeeded", "2026-02-01T10:00:00Z", originalBranch="lamps",
                    recoveryBranch="cairnfield/recovery/lamps", preservedCommitSHA=COMMIT, pullRequestNumber=7,
                    pullRequestURL="https://git.example.org/ada/beacon/pull/7",
                    recoveryVaultPaths=["/vault/.env", "/vault/key.pem"])])
        app = self.start()
        app.find("Select a cleanup")
        return app

    def rows(self, app):
        return app.find_all(role="list item", below=app.find("History", role="list"))

    def select(self, app, repository):
        app.press(app.find(repository, role="list item", below=app.find("History", role="list")))
        app.find("Cleanup detail")

    def values(self, app):
        """The labels and values of the detail, in order."""
        named = [node.name for node in app.find_all(role="panel", below=app.find("Cleanup detail")) if ": " in node.name]
        return dict(name.split(": ", 1) for name in named)

    def test_says_that_there_are_no_cleanups_yet(self):
        app = self.start()
        app.find("No cleanups yet")
        app.find("Every attempt — successful, failed, or cancelled — is recorded here with where your work went.")

    def test_lists_every_attempt_newest_first(self):
        app = self.start_with_receipts()
        self.assertEqual([row.name for row in self.rows(app)], ["atlas", "beacon", "zephyr"])
        descriptions = [row.description for row in self.rows(app)]
        self.assertTrue(descriptions[0].startswith("Failed, "), descriptions[0])
        self.assertTrue(descriptions[1].startswith("Cleaned, "), descriptions[1])
        self.assertTrue(descriptions[2].startswith("Cancelled, "), descriptions[2])
        app.find("Receipts record the recovery branch, commit, pull request, and anything archived.")

    def test_shows_where_the_work_of_a_success_went_and_copies_it(self):
        app = self.start_with_receipts()
        self.select(app, "beacon")
        self.assertEqual(self.values(app), {
            "Worktree": "/code/beacon-work", "Original branch": "lamps", "Recovery branch": "cairnfield/recovery/lamps",
            "Preserved commit": COMMIT, "Pull request": "#7", "Safety at the time": "Preserve first", "Reclaimed": "3 MB",
            "Final stage": "Completed"})
        app.find("Cleaned", role="heading")
        self.assertIsNone(app.find_now("What stopped it"))
        app.find("Reveal vault files", role="push button")
        app.press(app.find("Copy recovery summary", role="push button"))
        copied = app.wait(lambda: app.clipboard(), "the summary on the clipboard").split("\n")
        self.assertTrue(copied[0].startswith("Cairnfield cleanup — Feb 1, 2026"), copied[0])
        self.assertEqual(copied[1:], [
            "Repository: beacon", "Worktree: /code/beacon-work", "Original branch: lamps",
            "Recovery branch: cairnfield/recovery/lamps", "Preserved commit: " + COMMIT,
            "Pull request: https://git.example.org/ada/beacon/pull/7", "Recovery Vault files: 2", "Result: Cleaned"])

    def test_shows_what_stopped_a_failure_as_plain_text(self):
        app = self.start_with_receipts()
        self.select(app, "atlas")
        app.find("What stopped it")
        app.find("The hook refused.\n<b>line two</b>\N{REPLACEMENT CHARACTER}")
        self.assertIsNone(app.find_now("Reveal vault files"))

    def test_shows_of_a_cancelled_attempt_only_what_it_has(self):
        app = self.start_with_receipts()
        self.select(app, "zephyr")
        self.assertEqual(list(self.values(app)), ["Worktree", "Safety at the time", "Reclaimed", "Final stage"])
        self.assertIsNone(app.find_now("What stopped it"))
        self.assertIsNone(app.find_now("Reveal vault files"))

    def test_moves_through_the_list_by_keyboard(self):
        app = self.start_with_receipts()
        app.click(app.find("beacon", role="list item"))
        self.assert_selected(app, "beacon")
        app.key("Down")
        self.assert_selected(app, "zephyr")
        app.key("Down")
        self.assert_selected(app, "zephyr")
        app.key("Home")
        self.assert_selected(app, "atlas")
        app.key("End")
        self.assert_selected(app, "zephyr")
        app.type("be")
        self.assert_selected(app, "beacon")
        app.key("Up")
        self.assert_selected(app, "atlas")
        app.find("What stopped it")

    def assert_selected(self, app, repository):
        app.wait(lambda: [row.name for row in self.rows(app) if app.has_state(row, "selected")] == [repository],
                 f"{repository} to be selected")

    def test_shows_the_empty_state_for_a_file_that_cannot_be_read_and_leaves_it_there(self):
        write_receipts(self.data(), {"not": "a list"})
        with open(self.data("cleanup-receipts.json"), encoding="utf-8") as file:
            before = file.read()
        app = self.start()
        app.wait(lambda: "Failed to decode cleanup-receipts.json" in app.log_text(), "the line in the log")
        app.find("No cleanups yet")
        with open(self.data("cleanup-receipts.json"), encoding="utf-8") as file:
            self.assertEqual(file.read(), before)


if __name__ == "__main__":
    main()
