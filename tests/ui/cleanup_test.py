"""A whole cleanup as a person does it, from the list to the receipt, by name of control; and every way in which it stops."""

import json
import os
import shutil
import subprocess

from cairnfield_ui import main
from code_folder import CodeFolderTestCase, git
from status_panel import StatusPanel

OPEN = "Preserve & Clean…"
TITLE = "Preserve & Clean"
QUITS_LATER = "Cairnfield quits as soon as the cleanup is finished."
NO_WAY_BACK = "Cancelling now could leave work half-preserved."


class Cleanup(CodeFolderTestCase):
    def setUp(self):
        super().setUp()
        for key, value in (("user.name", "Ada"), ("user.email", "ada@example.org")):
            subprocess.run(["git", "config", "--global", key, value], check=True)
        self.hub = os.path.join(self.home, "hub.git")
        self.gate = os.path.join(self.home, "gate")
        for path in (self.hub, self.gate):
            shutil.rmtree(path, ignore_errors=True)
        os.makedirs(self.gate)
        git("init", "--bare", "-b", "main", self.hub, at=self.home)
        self.atlas = self.repository("atlas")
        self.write(self.atlas, ".gitignore", ".env\nnode_modules/\n")
        self.write(self.atlas, "kept.txt", "as it was\n")
        git("add", ".", at=self.atlas)
        git("commit", "-m", "files", at=self.atlas)
        git("remote", "add", "origin", self.hub, at=self.atlas)
        git("push", "-u", "origin", "main", at=self.atlas)
        self.feature = self.worktree(self.atlas, "feature")

    @staticmethod
    def write(folder, name, text):
        os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def change(self):
        self.write(self.feature, "kept.txt", "changed\n")
        self.write(self.feature, "new.txt", "new\n")

    def hook(self, name, script):
        path = os.path.join(self.atlas, ".git", "hooks", name)
        self.write(os.path.dirname(path), name, "#!/bin/sh\n" + script + "\n")
        os.chmod(path, 0o755)

    def open_review(self):
        self.leave_untouched()
        app = self.start()
        app.resize(1080, 1150)  # so high that nothing has to be scrolled to
        self.add_folder(app)
        app.press(app.find("feature", role="list item"))
        app.press(app.find(OPEN, role="push button"))
        self.sheet(app)
        return app

    @staticmethod
    def close_window(app):
        app.key("ctrl+w")
        app.wait(lambda: app.window_named() is None, "the window to close")

    @staticmethod
    def open_again(app):
        """By starting the program once more."""
        subprocess.run([os.environ["CAIRNFIELD_PROGRAM"]], check=True, stdin=subprocess.DEVNULL)
        app.wait_window()

    def sheet(self, app):
        return app.find(TITLE, role="dialog")

    def press(self, app, name):
        app.press(app.find(name, role="push button", below=self.sheet(app)))

    def buttons(self, app):
        return [node.name for node in app.find_all(role="push button", below=self.sheet(app))]

    def stages(self, app):
        return {row.name: row.description
                for row in app.find_all(role="list item", below=app.find("Stages", role="list", below=self.sheet(app)))}

    def turn(self, app, name):
        toggle = app.find(name, role="check box", below=self.sheet(app))
        before = app.has_state(toggle, "checked")
        app.press(toggle)
        app.wait(lambda: app.has_state(app.find(name, role="check box"), "checked") != before, f"{name!r} to turn")

    def recovery_branches(self):
        return [line for line in git("branch", "--list", "--format=%(refname:short)", at=self.hub).split("\n")
                if line.startswith("cairnfield/recovery/atlas/")]

    def wait_at_gate(self, app):
        """Until the push waits in its hook."""
        app.wait(lambda: os.path.exists(os.path.join(self.gate, "reached")), "the push")

    def hold_push(self):
        self.hook("pre-push", f"touch '{self.gate}/reached'\nwhile [ ! -e '{self.gate}/open' ]; do sleep 0.05; done")

    def open_gate(self):
        self.write(self.gate, "open", "")

    def assert_lost_nothing(self):
        with open(os.path.join(self.feature, "new.txt"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "new\n")

    # The whole way.

    def test_goes_from_the_list_to_the_receipt(self):
        self.change()
        self.write(self.feature, ".env", "secret\n")
        self.write(self.feature, "node_modules/big.js", "x" * 100_000)
        app = self.open_review()
        self.sheet_says(app, "atlas · feature", "1 · What Cairnfield found", "Safety: Preserve first", "Tracked changes: 1",
                        "Untracked files: 1", "2 · What is preserved", "Remote: origin", "Base branch: main",
                        "Sign in with the GitHub CLI to enable pull requests.",
                        "Ignored files that look sensitive are never pushed.", "3 · What disappears",
                        "Cairnfield removes the worktree with `git worktree remove` — never a forced delete.", self.feature)
        app.find(lambda name: name.startswith("• .env · "), below=self.sheet(app))
        app.find(lambda name: name.startswith("node_modules · ") and " · rebuilt by npm install" in name, below=self.sheet(app))
        self.turn(app, "Include untracked files")
        self.turn(app, "Include untracked files")
        field = app.find("Commit message", role="text", below=self.sheet(app))
        field.queryComponent().grabFocus()
        app.wait(lambda: app.has_state(app.find("Commit message", role="text"), "focused"), "the message to have the keyboard")
        app.key("ctrl+a")
        app.type("Put away for now")
        app.wait(lambda: app.find("Commit message", role="text").queryText().getText(0, -1) == "Put away for now", "the message")
        self.press(app, TITLE)
        app.find("Cleaned", below=self.sheet(app))
        self.assertFalse(os.path.exists(self.feature))
        [branch] = self.recovery_branches()
        self.assertEqual(git("show", branch + ":new.txt", at=self.hub), "new")
        self.assertEqual(git("show", branch + ":kept.txt", at=self.hub), "changed")
        self.assertEqual(git("log", "-1", "--format=%s", branch, at=self.hub), "Put away for now")
        commit = git("rev-parse", branch, at=self.hub)
        self.sheet_says(app, "Where your work is", "Recovery branch: " + branch, "Commit: " + commit,
                        "Recovery Vault: 1 file(s)")
        self.press(app, "Copy recovery summary")
        summary = app.wait(app.clipboard, "the summary on the clipboard").split("\n")
        self.assertIn("Recovery branch: " + branch, summary)
        self.assertIn("Preserved commit: " + commit, summary)
        self.assertIn("Result: Cleaned", summary)
        self.press(app, "Close")
        app.wait_gone(TITLE, role="dialog")
        app.wait(lambda: self.rows(app) == ["main"], "a list without the worktree")
        app.wait(lambda: app.has_state(app.find("Worktrees", role="list"), "focused"), "the list to have the keyboard")
        self.assertNotIn("qrc:", app.log_text())

    def sheet_says(self, app, *texts):
        for text in texts:
            app.find(text, below=self.sheet(app))

    def test_needs_no_pointer(self):
        self.change()
        self.leave_untouched()
        app = self.start()
        self.add_folder(app)
        app.find("feature", role="list item")
        app.key("ctrl+f")
        app.wait(lambda: app.has_state(app.find("Repository, branch, or path"), "focused"), "the search field")
        app.type("feature")
        app.wait(lambda: self.rows(app) == ["feature"], "the one row")
        app.key("Down")
        for _ in range(12):
            app.key("Tab")
            if (app.focused() or app.frame).name == OPEN:
                break
        app.wait(lambda: (app.focused() or app.frame).name == OPEN, "the button to have the keyboard")
        app.key("Return")
        app.find("1 · What Cairnfield found", below=self.sheet(app))
        seen = []
        while not seen or seen[-1] != TITLE:
            app.key("Tab")
            app.wait(lambda: (app.focused() or app.frame).name not in seen[-1:], "the next control")
            seen.append(app.focused().name)
            self.assertLess(len(seen), 10, seen)
        self.assertEqual(seen, ["1 changed file", "1 untracked file", "Include untracked files", "Open a draft pull request",
                                "Commit message", "Cancel", TITLE])
        app.key("Return")
        app.find("Cleaned", below=self.sheet(app))
        app.key("Return")
        app.wait_gone(TITLE, role="dialog")
        self.assertFalse(os.path.exists(self.feature))

    def test_cancel_and_escape_change_nothing(self):
        self.change()
        app = self.open_review()
        app.find("1 · What Cairnfield found", below=self.sheet(app))
        self.press(app, "Cancel")
        app.wait_gone(TITLE, role="dialog")
        app.press(app.find(OPEN, role="push button"))
        app.find("1 · What Cairnfield found", below=self.sheet(app))
        app.key("Escape")
        app.wait_gone(TITLE, role="dialog")
        self.assertEqual(self.recovery_branches(), [])
        self.assert_lost_nothing()

    def test_asks_nothing_where_every_commit_is_on_the_remote(self):
        self.write(self.feature, ".env", "secret\n")
        app = self.open_review()
        self.sheet_says(app, "Every commit here already exists on the remote.")
        self.assertEqual([box.name for box in app.find_all(role="check box", below=self.sheet(app))],
                         ["Copy them to the Recovery Vault instead"])
        self.assertIsNone(app.find_now("Commit message", below=self.sheet(app)))
        self.press(app, TITLE)
        self.sheet_says(app, "Cleaned", "Recovery Vault: 1 file(s)")
        self.assertEqual(self.recovery_branches(), [])

    # What it lists.

    def test_offers_to_keep_what_looks_sensitive_below_the_top(self):
        self.write(self.feature, "src/api/.env", "secret\n")
        self.write(self.feature, "node_modules/pkg/.env", "published\n")
        app = self.open_review()
        self.sheet_says(app, "1 ignored file in a folder looks sensitive.", "• src/api/.env · 7 bytes")
        toggle = app.find("Copy these to the Recovery Vault too", role="check box", below=self.sheet(app))
        self.assertTrue(app.has_state(toggle, "checked"))
        goes = "Not copied to the Recovery Vault, so this file goes with the worktree:"
        self.assertIsNone(app.find_now(goes, below=self.sheet(app)))
        self.turn(app, "Copy these to the Recovery Vault too")
        self.sheet_says(app, goes)
        app.find("• src/api/.env · 7 bytes", role="list item", below=app.find(goes, role="list", below=self.sheet(app)))
        app.picture("not-copied-to-the-vault")
        self.turn(app, "Copy these to the Recovery Vault too")
        app.wait_gone(goes)
        self.press(app, TITLE)
        self.sheet_says(app, "Cleaned", "Recovery Vault: 1 file(s)")
        with open(self.data("recovery-vault.json"), encoding="utf-8") as file:
            [entry] = json.load(file)
        self.assertEqual(entry["relativePath"], "src/api/.env")
        self.assertNotIn("qrc:", app.log_text())

    def test_lists_every_file_for_whoever_unfolds_the_lists(self):
        self.change()
        self.write(self.feature, ".env", "secret\n")
        self.write(self.feature, "node_modules/big.js", "x")
        app = self.open_review()
        for head, row in (("1 changed file", "kept.txt"), ("1 untracked file", "new.txt"),
                          ("2 ignored files and folders", lambda name: name.startswith("node_modules · ")
                           and name.endswith(" · Rebuildable"))):
            button = app.find(head, role="push button", below=self.sheet(app))
            self.assertEqual(button.description, "Folded")
            self.assertIsNone(app.find_now(head, role="list", below=self.sheet(app)))
            app.press(button)
            app.find(row, role="list item", below=app.find(head, role="list", below=self.sheet(app)))
            app.wait(lambda head=head: app.find(head, role="push button").description == "Unfolded", "the head to say so")
        app.find(lambda name: name.startswith(".env · ") and name.endswith(" · Sensitive"), role="list item",
                 below=self.sheet(app))
        app.picture("files-unfolded")
        button = app.find("1 changed file", role="push button", below=self.sheet(app))
        button.queryComponent().grabFocus()
        app.wait(lambda: app.has_state(app.find("1 changed file", role="push button"), "focused"), "the head to have the keyboard")
        app.key("space")
        app.wait_gone("1 changed file", role="list")
        self.assertNotIn("qrc:", app.log_text())

    # The ways in which it stops.

    def test_is_blocked_without_a_remote(self):
        git("remote", "remove", "origin", at=self.atlas)
        self.change()
        app = self.open_review()
        self.sheet_says(app, "Nothing was changed", "This repository has no remote to preserve work to.")
        self.assertEqual(self.buttons(app), ["Close"])
        app.key("Return")
        app.wait_gone(TITLE, role="dialog")
        app.press(app.find(OPEN, role="push button"))
        app.find("Nothing was changed", below=self.sheet(app))
        app.key("Escape")
        app.wait_gone(TITLE, role="dialog")
        self.assert_lost_nothing()

    def test_shows_what_a_hook_has_against_it(self):
        self.change()
        self.hook("pre-commit", "echo 'No <b>secrets</b> here' >&2\necho 'nor there' >&2\nexit 1")
        app = self.open_review()
        self.press(app, TITLE)
        app.find("Failed", below=self.sheet(app))
        app.find("A commit hook stopped the preservation commit. No <b>secrets</b> here\nnor there", below=self.sheet(app))
        self.assertEqual(self.buttons(app), ["Copy recovery summary", "Close"])
        self.assertEqual(self.recovery_branches(), [])
        self.assert_lost_nothing()

    def test_shows_that_the_push_was_refused(self):
        self.change()
        self.hook("pre-push", "echo 'not on a Friday' >&2\nexit 1")
        app = self.open_review()
        self.press(app, TITLE)
        app.find("Preserved, not removed", below=self.sheet(app))
        app.find(lambda name: "not on a Friday" in name, below=self.sheet(app))
        self.assertEqual(self.recovery_branches(), [])
        self.assert_lost_nothing()

    # While it runs.

    def test_is_closed_by_nothing_while_it_runs(self):
        self.change()
        self.hold_push()
        app = self.open_review()
        app.find("1 · What Cairnfield found", below=self.sheet(app))
        app.key("Return")
        self.wait_at_gate(app)
        app.wait(lambda: self.stages(app).get("Pushing to the remote") == "In progress", "the stage")
        stages = self.stages(app)
        self.assertEqual(len(stages), 11)
        self.assertEqual(stages["Committing"], "Done")
        self.assertEqual(stages["Removing the worktree"], "Pending")
        self.assertEqual(self.buttons(app), [])
        for key in ("Escape", "Return", "space", "ctrl+1", "ctrl+f", "F5"):
            app.key(key)
        subprocess.run(["xdotool", "mousemove", "--window", app.window, "5", "5", "click", "1"], check=True)
        self.sheet_says(app, NO_WAY_BACK, "atlas · feature")
        self.assertEqual(self.stages(app), stages)
        self.assertIsNotNone(app.find_now("Worktrees", role="list"), "another section hides the screen")
        self.open_gate()
        app.find("Cleaned", below=self.sheet(app))
        app.key("Escape")
        app.wait_gone(TITLE, role="dialog")

    def test_goes_on_without_a_window_and_is_there_when_it_opens_again(self):
        self.change()
        self.hold_push()
        panel = StatusPanel()
        self.addCleanup(panel.leave)
        app = self.open_review()
        app.wait(lambda: panel.items, "the item to register")
        self.press(app, TITLE)
        self.wait_at_gate(app)
        self.close_window(app)
        self.open_again(app)
        self.sheet_says(app, NO_WAY_BACK, "atlas · feature")
        app.wait(lambda: self.stages(app).get("Pushing to the remote") == "In progress", "the stage")
        app.key("Escape")
        self.sheet_says(app, NO_WAY_BACK)
        self.close_window(app)
        self.open_gate()
        app.wait(lambda: not os.path.exists(self.feature), "the worktree to go")
        self.open_again(app)
        app.find("Cleaned", below=self.sheet(app))
        self.assertEqual(len(self.recovery_branches()), 1)
        self.close_window(app)
        self.open_again(app)
        app.find("Cleaned", below=self.sheet(app))
        app.key("Return")
        app.wait_gone(TITLE, role="dialog")

    # The end of the program meanwhile.

    def test_ends_the_program_only_after_the_cleanup(self):
        self.change()
        self.hold_push()
        app = self.open_review()
        self.press(app, TITLE)
        self.wait_at_gate(app)
        app.key("ctrl+q")
        app.find(QUITS_LATER)
        app.picture("quits-after-the-cleanup")
        app.terminate()
        app.terminate()
        self.close_window(app)  # there is no other way back to the program here, so this asks for the end as well
        app.wait_window()
        app.find(QUITS_LATER)
        self.sheet_says(app, NO_WAY_BACK)
        self.open_gate()
        self.assertEqual(app.wait_ended(), 0)
        self.assertFalse(os.path.exists(self.feature))
        [branch] = self.recovery_branches()
        self.assertEqual(git("show", branch + ":new.txt", at=self.hub), "new")
        with open(self.data("cleanup-receipts.json"), encoding="utf-8") as file:
            [receipt] = json.load(file)
        self.assertEqual((receipt["outcome"], receipt["recoveryBranch"]), ("succeeded", branch))


if __name__ == "__main__":
    main()
