#!/usr/bin/env python3
"""What whoever starts the program leaves it with: signals that are ignored or blocked, and an environment."""

import os
import sys

from driver_case import DriverCase, main

# Starts the words that follow with SIGCHLD ignored and every signal blocked, as some session managers do.
WORST = (sys.executable, "-c", "import os, signal, sys\n"
         "for number in signal.valid_signals() - {signal.SIGKILL, signal.SIGSTOP}: signal.signal(number, signal.SIG_IGN)\n"
         "signal.pthread_sigmask(signal.SIG_SETMASK, signal.valid_signals())\n"
         "os.execv(sys.argv[1], sys.argv[1:])")


class Signals(DriverCase):
    def test_git_is_understood_though_our_starter_ignores_the_ends_of_children(self):
        repository = self.repository()
        worktree = self.worktree(repository, "topic")
        expected = self.drive("inspect", str(self.root)).result["worktrees"]
        self.assertEqual({entry["path"] for entry in expected}, {str(repository), str(worktree)})
        told = self.drive("inspect", str(self.root), before=WORST).result["worktrees"]
        self.assertEqual([entry["safety"] for entry in told], [entry["safety"] for entry in expected])

    def test_children_start_with_the_default_signals(self):
        repository = self.repository()
        note = self.home / "signals"
        # git runs a filter when a file looks touched; it stands for every program that git starts.
        (repository / ".gitattributes").write_text("file filter=note\n")
        self.git(repository, "config", "filter.note.clean", f"grep -E '^Sig(Blk|Ign)' /proc/self/status >{note}; cat")
        self.git(repository, "add", ".")
        self.git(repository, "commit", "--quiet", "--message", "Attributes")
        note.unlink()
        os.utime(repository / "file", (1, 1))
        self.drive("inspect", str(self.root), before=WORST)
        of_the_thread_library = 0b11 << 31
        for line in note.read_text().splitlines():
            name, mask = line.split()
            self.assertEqual(int(mask, 16) & ~of_the_thread_library, 0, name)


class Surroundings(DriverCase):
    def test_git_gets_settings_that_keep_it_safe_and_nothing_that_leads_it_elsewhere(self):
        repository = self.repository()
        note = self.home / "environment"
        (repository / ".gitattributes").write_text("file filter=note\n")
        self.git(repository, "config", "filter.note.clean", f"env -0 >{note}; cat")
        self.git(repository, "add", ".")
        self.git(repository, "commit", "--quiet", "--message", "Attributes")
        note.unlink()
        os.utime(repository / "file", (1, 1))
        self.environment.update({"GIT_NAMESPACE": "other", "PATH": "./bin:/usr/bin:/bin", "MARK": "a=b\nc"})
        self.drive("inspect", str(self.root))
        given = dict(pair.split("=", 1) for pair in note.read_text().split("\0") if pair)
        self.assertEqual(given["MARK"], "a=b\nc")
        self.assertEqual(given["GIT_NO_LAZY_FETCH"], "1")
        self.assertIn("core.fsmonitor", [value for key, value in given.items() if key.startswith("GIT_CONFIG_KEY_")])
        self.assertNotIn("GIT_NAMESPACE", given)
        self.assertNotIn("./bin", given["PATH"].split(":"))


if __name__ == "__main__":
    main()
