"""Real repositories in a folder that the program watches, for scripts about worktrees."""

import os
import shutil
import subprocess

from cairnfield_ui import UITestCase

LONG_AGO = 1_600_000_000


def git(*arguments, at):
    """The command's output, without the newline at its end."""
    return subprocess.run(["git", "-C", at, "-c", "user.name=Ada", "-c", "user.email=ada@example.org", *arguments], check=True,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout.rstrip("\n")


class CodeFolderTestCase(UITestCase):
    """Starts each test with an empty folder of code and a program that has never run."""

    def setUp(self):
        super().setUp()
        self.code = os.path.join(self.home, "code")
        for path in (self.code, self.data(), self.config()):
            shutil.rmtree(path, ignore_errors=True)

    def repository(self, name):
        path = os.path.join(self.code, name)
        os.makedirs(path)
        git("init", "-b", "main", at=path)
        git("commit", "--allow-empty", "-m", "first", at=path)
        return path

    def worktree(self, repository, branch):
        path = repository + "-" + branch
        git("worktree", "add", "-b", branch, path, at=repository)
        return path

    def leave_untouched(self):
        """All of it was touched long ago, so that nothing counts as being in use."""
        for path, folders, files in os.walk(self.code):
            for name in folders + files:
                os.utime(os.path.join(path, name), (LONG_AGO, LONG_AGO), follow_symlinks=False)
            os.utime(path, (LONG_AGO, LONG_AGO))

    def add_folder(self, app):
        """Until the folder is watched; then back on the worktree screen."""
        app.key("ctrl+3")
        app.press(app.find("Add folder", role="push button"))
        app.wait(lambda: (app.focused() or app.frame).name == "Path of the folder", "the path field to have the keyboard")
        app.type(self.code)
        app.key("Return")
        app.find("code", role="list item")
        app.key("ctrl+2")

    def rows(self, app):
        return [row.name for row in app.find_all(role="list item", below=app.find("Worktrees", role="list"))]
