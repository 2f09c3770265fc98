"""The screen of the Recovery Vault: looking, restoring and deleting, by name and by keyboard."""

import os
import shutil

from cairnfield_ui import UITestCase, main
from records import keep

SECRET = b"TOKEN=1\r\n\0\xff end without a newline"


class Recovery(UITestCase):
    def setUp(self):
        super().setUp()
        shutil.rmtree(self.data(), ignore_errors=True)
        self.place = os.path.join(self.home, "restored")
        shutil.rmtree(self.place, ignore_errors=True)

    def start(self, environment=None):
        app = super().start(environment)
        app.key("ctrl+5")
        return app

    def start_with_files(self, files=None):
        self.stored = keep(self.data(), files or {b".env": SECRET, b"config/key.pem": b"KEY"})
        app = self.start()
        app.find("Recovery", role="list")
        return app

    def row(self, app, path):
        return app.find(path, role="list item", below=app.find("Recovery", role="list"))

    def ask_for(self, app, path, action):
        app.press(app.find(action, role="push button", below=self.row(app, path)))

    def fill(self, app, name, text):
        """Types into a field of the sheet, in place of what stands there."""
        field = app.find(name, role="text", below=app.find("Save a copy", role="dialog"))
        field.queryComponent().grabFocus()
        app.wait(lambda: app.has_state(app.find(name, role="text"), "focused"), f"{name} to have the keyboard")
        app.key("ctrl+a")
        app.type(text)

    def text_of(self, app, name):
        return app.find(name, role="text", below=app.find("Save a copy", role="dialog")).queryText().getText(0, -1)

    @staticmethod
    def read(path):
        with open(path, "rb") as file:
            return file.read()

    def test_says_that_the_vault_is_empty(self):
        app = self.start()
        app.find("The Recovery Vault is empty")
        app.find("Local-only files that must not be pushed are copied here before a worktree is removed.")

    def test_lists_what_was_kept_in_order(self):
        app = self.start_with_files()
        rows = app.find_all(role="list item", below=app.find("Recovery", role="list"))
        self.assertEqual([row.name for row in rows], [".env", "config/key.pem"])
        self.assertRegex(rows[0].description, f"^{len(SECRET)} bytes, atlas · archived .* ago, Expires Jun 7, 2035")
        self.assertNotIn("Expires", rows[1].description)
        app.find(lambda name: name.startswith("Expires "), below=self.row(app, ".env"))
        self.assertEqual(app.find_all(lambda name: name.startswith("Expires "), below=self.row(app, "config/key.pem")), [])

    def test_leaves_the_list_where_it_is_when_a_row_is_chosen(self):
        app = self.start_with_files({b"file %02d" % number: b"x" for number in range(20)})
        before = self.row(app, "file 00").queryComponent().getExtents(0)
        app.click(self.row(app, "file 02"))
        app.wait(lambda: app.has_state(self.row(app, "file 02"), "selected"), "the row to be selected")
        app.press(self.row(app, "file 01"))
        app.wait(lambda: app.has_state(self.row(app, "file 01"), "selected"), "the other row to be selected")
        self.assertEqual(self.row(app, "file 00").queryComponent().getExtents(0).y, before.y)
        app.key("End")
        app.wait(lambda: app.has_state(self.row(app, "file 19"), "selected"), "the last row to be selected")
        end = app.find("Recovery", role="list").queryComponent().getExtents(0)
        last = self.row(app, "file 19").queryComponent().getExtents(0)
        self.assertEqual(end.y + end.height - last.y - last.height, 24)
        app.key("Home")
        app.wait(lambda: self.row(app, "file 00").queryComponent().getExtents(0).y == before.y, "the top of the list again")

    def test_restores_a_file_byte_for_byte_to_a_folder_that_it_makes(self):
        app = self.start_with_files()
        self.ask_for(app, ".env", "Restore…")
        app.find("Save a copy", role="dialog")
        app.wait(lambda: (app.focused() or app.frame).name == "Name", "the name to have the keyboard")
        self.assertEqual(self.text_of(app, "Name"), ".env")
        self.assertEqual(self.text_of(app, "Folder"), self.home)
        self.fill(app, "Name", "copy of .env")
        self.fill(app, "Folder", os.path.join(self.place, "new folder"))
        app.press(app.find("Save", role="push button"))
        app.wait_gone("Save a copy", role="dialog")
        copy = os.path.join(self.place, "new folder", "copy of .env")
        app.wait(lambda: os.path.exists(copy), "the restored file")
        self.assertEqual(self.read(copy), SECRET)
        self.assertEqual(self.read(self.stored[0]), SECRET)
        self.row(app, ".env")

    def test_restores_a_name_that_is_not_valid_text(self):
        app = self.start_with_files({b"config/key\xff\n.pem": SECRET})
        self.ask_for(app, "config/key\N{REPLACEMENT CHARACTER}␊.pem", "Restore…")
        app.find("Save a copy", role="dialog")
        self.fill(app, "Folder", self.place)
        app.key("Return")
        app.wait_gone("Save a copy", role="dialog")
        copy = os.fsencode(self.place) + b"/key\xff\n.pem"
        app.wait(lambda: os.path.exists(copy), "the restored file")
        self.assertEqual(self.read(copy), SECRET)

    def test_changes_nothing_when_the_panel_is_cancelled(self):
        app = self.start_with_files()
        before = sorted(os.listdir(self.home))
        self.ask_for(app, ".env", "Restore…")
        app.press(app.find("Cancel", role="push button", below=app.find("Save a copy", role="dialog")))
        app.wait_gone("Save a copy", role="dialog")
        self.ask_for(app, ".env", "Restore…")
        app.find("Save a copy", role="dialog")
        app.key("Escape")
        app.wait_gone("Save a copy", role="dialog")
        self.assertEqual(sorted(os.listdir(self.home)), before)
        self.assertEqual(self.read(self.stored[0]), SECRET)
        self.row(app, ".env")

    def test_never_replaces_a_file(self):
        app = self.start_with_files()
        os.makedirs(self.place)
        taken = os.path.join(self.place, ".env")
        with open(taken, "wb") as file:
            file.write(b"precious")
        self.ask_for(app, ".env", "Restore…")
        app.find("Save a copy", role="dialog")
        self.fill(app, "Folder", self.place)
        app.press(app.find("Save", role="push button"))
        app.find(".env already exists there. Nothing is replaced: choose another name.")
        self.assertEqual(self.read(taken), b"precious")
        self.fill(app, "Name", "another")
        app.press(app.find("Save", role="push button"))
        app.wait_gone("Save a copy", role="dialog")
        app.wait(lambda: os.path.exists(os.path.join(self.place, "another")), "the restored file")
        self.assertEqual(self.read(taken), b"precious")

    def test_drops_the_failure_of_a_restore_without_a_message_and_keeps_the_entry(self):
        app = self.start_with_files()
        os.remove(self.stored[0])
        self.ask_for(app, ".env", "Restore…")
        app.find("Save a copy", role="dialog")
        self.fill(app, "Folder", self.place)
        app.press(app.find("Save", role="push button"))
        app.wait_gone("Save a copy", role="dialog")
        app.wait(lambda: "The stored copy is missing." in app.log_text(), "the failure in the log")
        self.assertEqual(app.find_all(lambda name: "missing" in name), [])
        self.row(app, ".env")

    def test_deletes_only_what_is_confirmed_and_ends_with_the_empty_state(self):
        app = self.start_with_files()
        self.ask_for(app, ".env", "Delete permanently")
        dialog = app.find("Delete this file permanently?", role="dialog")
        app.find(".env cannot be recovered afterwards. It exists nowhere else.", below=dialog)
        app.press(app.find("Cancel", role="push button", below=dialog))
        app.wait_gone("Delete this file permanently?", role="dialog")
        self.assertEqual(self.read(self.stored[0]), SECRET)

        self.ask_for(app, ".env", "Delete permanently")
        app.find("Delete this file permanently?", role="dialog")
        app.key("Return")  # the keyboard starts on Cancel
        app.wait_gone("Delete this file permanently?", role="dialog")
        self.assertEqual(self.read(self.stored[0]), SECRET)

        self.ask_for(app, ".env", "Delete permanently")
        app.press(app.find("Delete", role="push button", below=app.find("Delete this file permanently?", role="dialog")))
        app.wait(lambda: not os.path.exists(self.stored[0]), "the file to be deleted")
        app.wait_gone(".env", role="list item")
        self.assertEqual(self.read(self.stored[1]), b"KEY")

        self.ask_for(app, "config/key.pem", "Delete permanently")
        app.press(app.find("Delete", role="push button", below=app.find("Delete this file permanently?", role="dialog")))
        app.find("The Recovery Vault is empty")
        self.assertFalse(os.path.exists(self.stored[1]))

    def test_works_without_a_pointer(self):
        app = self.start_with_files()
        app.key("Tab")
        app.wait(lambda: (app.focused() or app.frame).name in ("Recovery", ".env"), "the list to have the keyboard")
        app.key("End")
        app.wait(lambda: app.has_state(self.row(app, "config/key.pem"), "selected"), "the last row to be selected")
        app.key("Up")
        app.wait(lambda: app.has_state(self.row(app, ".env"), "selected"), "the first row to be selected")
        app.key("Delete")
        app.find(".env cannot be recovered afterwards. It exists nowhere else.",
                 below=app.find("Delete this file permanently?", role="dialog"))
        app.key("Escape")
        app.wait_gone("Delete this file permanently?", role="dialog")
        app.key("Tab", "Tab", "Return")
        app.find("Save a copy", role="dialog")
        app.wait(lambda: (app.focused() or app.frame).name == "Name", "the name to have the keyboard")
        app.type("by key")
        app.key("Return")
        app.wait_gone("Save a copy", role="dialog")
        copy = os.path.join(self.home, "by key")
        app.wait(lambda: os.path.exists(copy), "the restored file")
        self.addCleanup(os.remove, copy)
        self.assertEqual(self.read(copy), SECRET)

    def test_lists_the_copies_of_an_index_that_cannot_be_decoded_and_loses_nothing(self):
        self.stored = keep(self.data(), {b".env": SECRET})
        with open(self.data("recovery-vault.json"), "w", encoding="utf-8") as file:
            file.write("garbled")
        app = self.start()
        app.wait(lambda: "Failed to decode recovery-vault.json" in app.log_text(), "the line in the log")
        app.find(".env", role="list item")
        self.assertEqual(self.read(self.data("recovery-vault.json")), b"garbled")
        self.assertEqual(self.read(self.stored[0]), SECRET)


if __name__ == "__main__":
    main()
