"""The screen of the watched folders: adding, looking, rescanning, removing, by keyboard and by name."""

import os

from cairnfield_ui import UITestCase, main


class WatchedFolders(UITestCase):
    def setUp(self):
        super().setUp()
        self.code = os.path.join(self.home, "code")
        os.makedirs(os.path.join(self.code, "heavy"), exist_ok=True)
        with open(os.path.join(self.code, "heavy", "file"), "wb") as file:
            file.write(b"x" * 3_000_000)
        for name in ("watched-folders.json",):
            if os.path.exists(self.data(name)):
                os.remove(self.data(name))

    def start(self, environment=None):
        app = super().start(environment)
        app.key("ctrl+3")
        return app

    def add(self, app, path):
        app.press(app.find("Add folder", role="push button"))
        app.find("Add folder", role="dialog")
        app.wait(lambda: (app.focused() or app.frame).name == "Path of the folder", "the path field to have the keyboard")
        app.type(path)
        app.key("Return")
        app.wait_gone("Add folder", role="dialog")

    def test_says_that_nothing_is_watched_and_offers_to_add_a_folder(self):
        app = self.start()
        app.find("Nothing is being watched")
        app.find("Cairnfield only scans folders you add here. Point it at the directory that holds your repositories.")
        app.press(app.find("Add folder…", role="push button"))
        app.find("Add folder", role="dialog")
        app.key("Escape")
        app.wait_gone("Add folder", role="dialog")
        app.find("Nothing is being watched")

    def test_adds_a_typed_folder_and_shows_what_it_holds(self):
        app = self.start()
        self.add(app, self.code)
        row = app.find("code", role="list item")
        app.wait(lambda: "3" in row.description and "Healthy" in row.description, "the folder's size and level")
        self.assertIn(self.code, row.description)
        app.find("Largest items")
        app.find(lambda name: name.startswith("heavy, 3"))

    def test_says_what_is_wrong_with_a_typed_path_and_keeps_it(self):
        app = self.start()
        app.press(app.find("Add folder", role="push button"))
        field = app.find("Path of the folder")
        app.wait(lambda: app.has_state(field, "focused"), "the path field to have the keyboard")
        app.type("code")
        app.press(app.find("Add", role="push button"))
        app.find("Type the whole path of a folder, starting with a slash.")
        self.assertEqual(app.find("Path of the folder").queryText().getText(0, -1), "code")
        app.key("ctrl+a")
        app.type("/no/such/folder")
        app.key("Return")
        app.find("There is no folder at this path.")
        app.press(app.find("Cancel", role="push button"))
        app.wait_gone("Add folder", role="dialog")
        app.find("Nothing is being watched")

    def test_changes_nothing_when_the_chooser_is_cancelled(self):
        app = self.start()
        app.press(app.find("Add folder", role="push button"))
        app.find("Add folder", role="dialog")
        app.press(app.find("Choose…", role="push button"))
        app.wait(lambda: len(app.find_all("Add folder", role="dialog")) == 2, "the chooser over the sheet")
        app.key("Escape")
        app.wait(lambda: len(app.find_all("Add folder", role="dialog")) == 1, "the sheet alone")
        app.key("Escape")
        app.wait_gone("Add folder", role="dialog")
        app.find("Nothing is being watched")

    def test_removes_the_selected_folder_and_only_then_can(self):
        app = self.start()
        self.add(app, self.code)
        row = app.find("code", role="list item")
        self.assertEqual(app.find("Remove", role="push button").description, "Not available now")
        app.press(row)
        app.wait(lambda: app.has_state(app.find("code", role="list item"), "selected"), "the row to be selected")
        app.wait(lambda: app.find("Remove", role="push button").description == "", "Remove to be possible")
        app.press(app.find("Remove", role="push button"))
        app.find("Nothing is being watched")

    def test_rescans_the_folder_of_a_row(self):
        app = self.start()
        self.add(app, self.code)
        app.find(lambda name: name.startswith("heavy, 3"))
        with open(os.path.join(self.code, "heavy", "more"), "wb") as file:
            file.write(b"x" * 5_000_000)
        self.addCleanup(os.remove, file.name)
        app.press(app.find(lambda name: name == "Rescan", role="push button", below=app.find("code", role="list item")))
        app.find(lambda name: name.startswith("heavy, 8"))


if __name__ == "__main__":
    main()
