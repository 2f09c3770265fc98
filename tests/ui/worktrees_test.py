"""The worktree screen over real repositories: from a folder on disk to its worktrees with verdicts, by keyboard and by name."""

import os

from cairnfield_ui import main
from code_folder import CodeFolderTestCase


class Worktrees(CodeFolderTestCase):
    def setUp(self):
        super().setUp()
        self.atlas = self.repository("atlas")
        self.worktree(self.atlas, "unsaved")
        with open(os.path.join(self.code, "atlas-unsaved", "new.txt"), "w", encoding="utf-8") as file:
            file.write("new\n")
        self.worktree(self.atlas, "Chart-Room")
        self.repository("zephyr")

    def start_with_folder(self):
        app = self.start()
        self.add_folder(app)
        app.find("Chart-Room", role="list item")
        return app

    def headings(self, app):
        return [head.name for head in app.find_all(role="heading", below=app.find("Worktrees", role="list"))]

    def description(self, app, branch):
        return app.find(branch, role="list item", below=app.find("Worktrees", role="list")).description

    def test_says_that_no_folder_is_watched(self):
        app = self.start()
        app.key("ctrl+2")
        app.find("No folders are being watched")
        app.find("Add the folder that holds your repositories. Cairnfield only looks where you point it.")

    def test_shows_each_worktree_with_its_verdict(self):
        app = self.start_with_folder()
        app.wait(lambda: sorted(self.headings(app)) == ["atlas", "zephyr"], "a section for each repository")
        self.assertEqual(sorted(self.rows(app)), ["Chart-Room", "main", "main", "unsaved"])
        # Both were touched a moment ago, which counts as being in use.
        self.assertTrue(self.description(app, "unsaved").startswith(("In use, ", "Preserve first, ")))
        self.assertIn(self.code + "/atlas-unsaved", self.description(app, "unsaved"))
        app.find("Select a worktree")

    def test_searches_whatever_the_case(self):
        app = self.start_with_folder()
        app.key("ctrl+f")
        search = app.find("Repository, branch, or path")
        app.wait(lambda: app.has_state(search, "focused"), "the search field to have the keyboard")
        app.type("cHART")
        app.wait(lambda: self.rows(app) == ["Chart-Room"], "the one row that fits")
        app.type("nothing")
        app.wait(lambda: self.rows(app) == [], "an empty list")
        app.find("Scan", role="push button")
        app.key("Escape")
        app.wait(lambda: len(self.rows(app)) == 4, "every row again")

    def test_groups_by_safety_and_back(self):
        app = self.start_with_folder()
        app.press(app.find("Safety", role="radio button"))
        app.wait(lambda: "Cannot clean" in self.headings(app), "sections by disposition")
        app.key("Left")
        app.wait(lambda: "atlas" in self.headings(app), "sections by project, by keyboard")

    def test_filters_by_disposition(self):
        app = self.start_with_folder()
        app.press(app.find("Filter", role="combo box"))
        app.press(app.find("Cannot clean", role="list item"))
        app.wait(lambda: self.rows(app) == ["main", "main"], "the main worktrees alone")

    def test_moves_through_the_list_by_keyboard(self):
        app = self.start_with_folder()
        app.key("ctrl+f")
        app.wait(lambda: app.has_state(app.find("Repository, branch, or path"), "focused"), "the search field")
        app.key("Down")
        app.wait(lambda: self.selected(app), "a first row")
        first = self.selected(app)
        app.key("Down")
        app.wait(lambda: self.selected(app) not in (None, first), "the next row")
        app.key("Home")
        app.wait(lambda: self.selected(app) == first, "the first row again")
        app.type("ch")
        app.wait(lambda: self.selected(app) == "Chart-Room", "the row by the start of its name")
        app.find("Worktree detail")
        app.find("Branch: Chart-Room")

    def selected(self, app):
        rows = app.find_all(role="list item", below=app.find("Worktrees", role="list"))
        return next((row.name for row in rows if app.has_state(row, "selected")), None)

    def test_pins_and_unpins(self):
        app = self.start_with_folder()
        app.press(app.find("Chart-Room", role="list item"))
        app.press(app.find("Pin", role="push button"))
        app.find("Unpin", role="push button")
        # The row may be made anew while one looks, so it is looked for again each time.
        app.wait(lambda: app.find_now("Pinned", below=app.find("Chart-Room", role="list item")), "the pin in its row")
        app.press(app.find("Unpin", role="push button"))
        app.find("Pin", role="push button")

    def test_never_offers_to_clean_the_main_worktree(self):
        app = self.start_with_folder()
        app.press(app.find("main", role="list item"))
        app.find("This is the repository's main checkout. Cairnfield never removes it.")
        self.assertIsNone(app.find_now("Preserve & Clean…"))

    def test_scans_again_by_key(self):
        app = self.start_with_folder()
        self.worktree(self.atlas, "later")
        app.key("F5")
        app.find("later", role="list item")


if __name__ == "__main__":
    main()
