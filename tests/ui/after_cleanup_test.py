"""What a person finds after a real cleanup: its receipt in the history, and the secret that was kept in the vault."""

import os
import shutil
import subprocess

from cairnfield_ui import main
from code_folder import CodeFolderTestCase, git

SECRET = b"TOKEN=1\n\xff"


class AfterCleanup(CodeFolderTestCase):
    def setUp(self):
        super().setUp()
        for key, value in (("user.name", "Ada"), ("user.email", "ada@example.org")):
            subprocess.run(["git", "config", "--global", key, value], check=True)
        hub = os.path.join(self.home, "hub.git")
        shutil.rmtree(hub, ignore_errors=True)
        git("init", "--bare", "-b", "main", hub, at=self.home)
        atlas = self.repository("atlas")
        with open(os.path.join(atlas, ".gitignore"), "w", encoding="utf-8") as file:
            file.write(".env\n")
        git("add", ".", at=atlas)
        git("commit", "-m", "files", at=atlas)
        git("remote", "add", "origin", hub, at=atlas)
        git("push", "-u", "origin", "main", at=atlas)
        self.feature = self.worktree(atlas, "feature")
        with open(os.path.join(self.feature, ".env"), "wb") as file:
            file.write(SECRET)
        with open(os.path.join(self.feature, "new.txt"), "w", encoding="utf-8") as file:
            file.write("new\n")
        self.leave_untouched()

    def clean(self, app):
        app.resize(1080, 1150)  # so high that nothing has to be scrolled to
        self.add_folder(app)
        app.press(app.find("feature", role="list item"))
        app.press(app.find("Preserve & Clean…", role="push button"))
        sheet = app.find("Preserve & Clean", role="dialog")
        app.press(app.find("Preserve & Clean", role="push button", below=sheet))
        app.find("Cleaned", below=app.find("Preserve & Clean", role="dialog"))
        app.press(app.find("Close", role="push button"))
        app.wait_gone("Preserve & Clean", role="dialog")
        self.assertFalse(os.path.exists(self.feature))

    def test_finds_the_work_again_through_the_history_and_the_vault(self):
        app = self.start()
        app.key("ctrl+6")
        app.find("No cleanups yet")
        app.key("ctrl+5")
        app.find("The Recovery Vault is empty")
        self.clean(app)

        app.key("ctrl+6")
        app.press(app.find("atlas", role="list item", below=app.find("History", role="list")))
        branch = app.find(lambda name: name.startswith("Recovery branch: "), below=app.find("Cleanup detail")).name
        branch = branch.removeprefix("Recovery branch: ")
        self.assertEqual(git("show", branch + ":new.txt", at=os.path.join(self.home, "hub.git")), "new")
        app.find("Worktree: " + self.feature)
        app.press(app.find("Copy recovery summary", role="push button"))
        app.wait(lambda: "Recovery branch: " + branch in app.clipboard().split("\n"), "the summary on the clipboard")

        app.key("ctrl+5")
        row = app.find(".env", role="list item", below=app.find("Recovery", role="list"))
        app.press(app.find("Restore…", role="push button", below=row))
        sheet = app.find("Save a copy", role="dialog")
        app.wait(lambda: (app.focused() or app.frame).name == "Name", "the name to have the keyboard")
        app.type("secrets again")
        app.press(app.find("Save", role="push button", below=sheet))
        app.wait_gone("Save a copy", role="dialog")
        restored = os.path.join(self.home, "secrets again")
        self.addCleanup(os.remove, restored)
        app.wait(lambda: os.path.exists(restored), "the restored file")
        with open(restored, "rb") as file:
            self.assertEqual(file.read(), SECRET)

        row = app.find(".env", role="list item", below=app.find("Recovery", role="list"))
        app.press(app.find("Delete permanently", role="push button", below=row))
        app.press(app.find("Delete", role="push button", below=app.find("Delete this file permanently?", role="dialog")))
        app.find("The Recovery Vault is empty")
        kept = [file for _, _, files in os.walk(self.data("Recovery")) for file in files]
        self.assertEqual(kept, [])


if __name__ == "__main__":
    main()
