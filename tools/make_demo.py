#!/usr/bin/env python3
"""Makes the repositories of the demonstration: make_demo.py HOME

Everything lies in HOME, git's settings included; nothing outside it is read or written, and no network is used. A home that
is already complete is kept, and only what must be recent is touched again. The worktrees between them show every verdict
that can be had without a hosting service:

    Projects/   storefront (a team's web shop), atlas (a library with a submodule), notes (no remote at all)
    Work/       ledger (self-hosted remote), fieldkit (remote on the public hosting service), platform (bare, with worktrees)
    Servers/    the bare repositories that play the remotes
"""

import os
import subprocess
import sys
import time
from pathlib import Path

DAY = 86_400
LARGE_FILE_BYTES = 300 * 1024 * 1024  # above the size from which an unknown ignored file asks for a person
COMPLETE = ".demo-complete"


class Demo:
    def __init__(self, home):
        self.home = home
        self.now = int(time.time())
        self.projects = home / "Projects"
        self.work = home / "Work"
        self.servers = home / "Servers"
        self.age = 90  # days ago of the next commit; each one is a day younger than the last

    # git, isolated

    def git(self, directory, *arguments, may_fail=False):
        date = f"{self.now - self.age * DAY} +0000"
        environment = {
            "PATH": os.environ["PATH"], "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home / ".config"),
            "GIT_CONFIG_NOSYSTEM": "1", "GIT_AUTHOR_DATE": date, "GIT_COMMITTER_DATE": date, "GIT_EDITOR": "true",
            "GIT_TERMINAL_PROMPT": "0", "LC_ALL": "C.UTF-8",
        }
        done = subprocess.run(["git", *arguments], cwd=directory, env=environment, capture_output=True, text=True,
                              stdin=subprocess.DEVNULL)
        if done.returncode != 0 and not may_fail:
            sys.exit(f"git {' '.join(arguments)} in {directory} failed:\n{done.stdout}{done.stderr}")
        return done.stdout.strip()

    def commit(self, directory, message, **files):
        for name, text in files.items():
            self.write(directory, name.replace("__", "/"), text)
        self.git(directory, "add", "--all")
        self.git(directory, "commit", "--quiet", "--message", message)
        self.age = max(self.age - 1, 3)

    @staticmethod
    def write(directory, name, text):
        file = directory / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)

    # the parts that repositories are made of

    def configure(self):
        for folder in (self.projects, self.work, self.servers):
            folder.mkdir(parents=True, exist_ok=True)
        self.write(self.home, ".gitconfig",
                   "[user]\n\tname = Robin Example\n\temail = robin@example.com\n"
                   "[init]\n\tdefaultBranch = main\n[advice]\n\tdetachedHead = false\n"
                   "[protocol \"file\"]\n\tallow = always\n[commit]\n\tgpgSign = false\n")

    def repository(self, path, ignored, **files):
        """A checkout with a few commits on main, and the bare repository that plays its remote."""
        server = self.servers / (path.name + ".git")
        self.git(self.home, "init", "--quiet", "--bare", str(server))
        self.git(self.home, "clone", "--quiet", str(server), str(path))
        self.commit(path, "Start the project", **{"README.md": f"# {path.name}\n", ".gitignore": ignored}, **files)
        self.commit(path, "Say how to build it", **{"CONTRIBUTING.md": "Run the build command.\n"})
        self.git(path, "push", "--quiet", "--set-upstream", "origin", "main")
        self.git(path, "remote", "set-head", "origin", "--auto")
        return path

    def worktree(self, repository, branch, place=None, start="main", **files):
        """A linked worktree on a new branch, with one commit when there are files for it."""
        path = place or repository.parent / f"{repository.name}-{branch.split('/')[-1]}"
        path.parent.mkdir(parents=True, exist_ok=True)
        self.git(repository, "worktree", "add", "--quiet", "--no-track", "-b", branch, str(path), start)
        if files:
            self.commit(path, branch.split("/")[-1].replace("-", " ").capitalize(), **files)
        return path

    def push(self, worktree):
        self.git(worktree, "push", "--quiet", "--set-upstream", "origin", "HEAD")

    def packages(self, worktree, count):
        """Rebuildable output, as a package manager leaves it."""
        for number in range(count):
            self.write(worktree, f"node_modules/package-{number % 40}/lib/module-{number}.js", f"// {number}\n" * 200)

    @staticmethod
    def large_file(file):
        """Blocks on disk, not a hole: a hole takes no space and would not be large."""
        with open(file, "wb") as out:
            try:
                os.posix_fallocate(out.fileno(), 0, LARGE_FILE_BYTES)
            except OSError:
                for _ in range(LARGE_FILE_BYTES // 2**20):
                    out.write(os.urandom(2**20))

    # the projects

    def make_storefront(self):
        shop = self.repository(self.projects / "storefront", "node_modules/\n.env*\ndist/\n*.qcow2\n",
                               **{"src__cart.ts": "export const cart = [];\n", "src__tax.ts": "export const rate = 0.19;\n"})
        self.packages(shop, 400)
        self.git(shop, "branch", "--quiet", "release/2.4")
        self.git(shop, "push", "--quiet", "origin", "release/2.4")

        merged = self.worktree(shop, "feature/checkout-totals", **{"src__totals.ts": "export const total = 0;\n"})
        self.push(merged)
        self.git(shop, "merge", "--quiet", "--no-ff", "--no-edit", "feature/checkout-totals")
        self.git(shop, "push", "--quiet")
        self.packages(merged, 240)

        preserved = self.worktree(shop, "feature/gift-cards", **{"src__gift.ts": "export const gift = true;\n"})
        self.push(preserved)
        self.packages(preserved, 160)

        ahead = self.worktree(shop, "feature/wish-list", **{"src__wish.ts": "export const wish = [];\n"})
        self.push(ahead)
        self.commit(ahead, "Keep the wish list between visits", **{"src__wish.ts": "export const wish = load();\n"})

        edited = self.worktree(shop, "fix/rounding")
        self.write(edited, "src/tax.ts", "export const rate = 0.19;\nexport const round = true;\n")

        new_files = self.worktree(shop, "spike/search", shop / ".claude/worktrees/spike-search")
        self.write(new_files, "src/search.ts", "export const search = () => [];\n")

        self.worktree(shop, "agent/type-errors", shop / ".claude/worktrees/type-errors")

        secrets = self.worktree(shop, "chore/staging", start="release/2.4")
        self.write(secrets, ".env.local", "API_TOKEN=only-on-this-machine\n")

        image = self.worktree(shop, "chore/test-vm")
        self.large_file(image / "staging.qcow2")

        conflict = self.worktree(shop, "feature/vat-rates", **{"src__tax.ts": "export const rate = lookup();\n"})
        other = self.worktree(shop, "fix/vat-2027", **{"src__tax.ts": "export const rate = 0.2;\n"})
        self.git(conflict, "merge", "fix/vat-2027", may_fail=True)
        self.git(other, "worktree", "lock", "--reason", "build in progress on the release machine", str(other))

    def make_atlas(self):
        tiles = self.repository(self.projects / "tiles", "build/\n", **{"tiles.c": "int tile;\n"})
        self.commit(tiles, "Draw rivers", **{"tiles.c": "int tile, river;\n"})
        self.git(tiles, "push", "--quiet")

        atlas = self.repository(self.projects / "atlas", "build/\ntarget/\n", **{"main.c": "int main(void) { return 0; }\n"})
        self.git(atlas, "submodule", "--quiet", "add", str(self.servers / "tiles.git"), "tiles")
        self.commit(atlas, "Take the tiles in as a submodule")
        self.git(atlas, "push", "--quiet")

        submodule = self.worktree(atlas, "feature/older-tiles")
        self.git(submodule, "submodule", "--quiet", "update", "--init")
        self.git(submodule / "tiles", "checkout", "--quiet", "HEAD~1")

        rebased = self.worktree(atlas, "feature/projection", **{"projection.c": "int projection;\n"})
        self.git(rebased, "rebase", "--exec", "false", "HEAD~1", may_fail=True)

        detached = self.worktree(atlas, "spike/globe")
        self.git(detached, "checkout", "--quiet", "--detach")
        self.commit(detached, "Try a globe", **{"globe.c": "int globe;\n"})

        looked_at = self.projects / "atlas-at-main"
        self.git(atlas, "worktree", "add", "--quiet", "--detach", str(looked_at), "origin/main")

        gone = self.worktree(atlas, "feature/night-mode")
        gone.rename(self.home / "moved away")

        self.recent = self.worktree(atlas, "feature/élévation", self.projects / "atlas – élévation")

    def make_notes(self):
        notes = self.projects / "notes"
        self.git(self.home, "init", "--quiet", str(notes))
        self.commit(notes, "First notes", **{"notes.md": "One.\n"})
        self.worktree(notes, "rewrite", **{"notes.md": "One, again.\n"})
        self.worktree(notes, "tidy-up")

    def make_ledger(self):
        ledger = self.repository(self.work / "ledger", "target/\n", **{"ledger.rs": "fn main() {}\n"})
        self.worktree(ledger, "feature/export", **{"export.rs": "fn export() {}\n"})
        self.forget_remote(ledger, "ssh://git@git.example.com/finance/ledger.git")

    def make_fieldkit(self):
        fieldkit = self.repository(self.work / "fieldkit", "build/\n", **{"kit.py": "print('kit')\n"})
        self.worktree(fieldkit, "feature/offline-maps", **{"maps.py": "maps = []\n"})
        self.forget_remote(fieldkit, "git@github.com:example-org/fieldkit.git")

    def forget_remote(self, repository, url):
        """As after `git remote add` and before the first fetch: nothing is known of what the remote holds."""
        self.git(repository, "remote", "remove", "origin")
        self.git(repository, "remote", "add", "origin", url)

    def make_platform(self):
        source = self.repository(self.home / "platform-source", "out/\n", **{"service.go": "package main\n"})
        platform = self.work / "platform"
        platform.mkdir()
        self.git(platform, "clone", "--quiet", "--bare", str(self.servers / (source.name + ".git")), ".bare")
        self.write(platform, ".git", "gitdir: ./.bare\n")
        bare = platform / ".bare"
        self.git(bare, "config", "remote.origin.fetch", "+refs/heads/*:refs/remotes/origin/*")
        self.git(bare, "fetch", "--quiet", "origin")
        self.git(bare, "worktree", "add", "--quiet", str(platform / "main"), "main")
        self.worktree(bare, "feature/metrics", platform / "metrics")

    # time

    def settle(self):
        """Worktrees touched in the last quarter of an hour count as in use, so everything was last touched days ago..."""
        days = 2
        for marker in self.home.rglob(".git"):
            when = self.now - days * DAY
            for path in (marker / "index", marker / "HEAD", marker, marker.parent):
                if path.exists():
                    os.utime(path, (when, when))
            days = days % 40 + 3

    def make(self):
        self.configure()
        for step in (self.make_storefront, self.make_atlas, self.make_notes, self.make_ledger, self.make_fieldkit,
                     self.make_platform):
            step()
        self.settle()
        (self.home / COMPLETE).write_text(str(self.recent.relative_to(self.home)))


def main(home):
    complete = home / COMPLETE
    if not complete.exists():
        if home.exists() and any(home.iterdir()):
            sys.exit(f"{home} holds something that is no complete demo; remove it, or give another place")
        home.mkdir(parents=True, exist_ok=True)
        Demo(home).make()
    # ... but for one worktree, in which somebody is at work right now.
    os.utime(home / complete.read_text())


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(Path(sys.argv[1]).resolve())
