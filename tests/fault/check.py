"""Judges one run: every item of the ledger has to be somewhere, or to stand in docs/guarantees.md under the name that is given
to it here."""

import os
from dataclasses import replace

import let_go
from account import content_of, shas, staged, tree_of, version_at
from let_go import Told, looks_sensitive, looks_sensitive_below
from receipts import compare_receipt, compare_stores, stored_receipt, vault_index
from whereabouts import Verdict, look_around, open_to_others


def is_secret(path):
    return looks_sensitive(path) if b"/" not in path else looks_sensitive_below(path)


class Judgement:
    def __init__(self, world, ledger, run):
        self.world = world
        self.ledger = ledger
        self.run = run
        self.verdict = Verdict()
        self.complaints = []  # receipts that are not true, and changes that nobody asked for
        self.receipt = stored_receipt(world, run.receipt or {})
        self.index = vault_index(world)
        self.is_gone = not os.path.lexists(world.worktree)
        ledger.look(run.moment, run.allows)
        self.around = look_around(world, ledger.heads, self.index, self.receipt.get("preservedCommitSHA"))
        self.still_staged = set() if self.is_gone else staged(world)
        self.last_look = run.reached("before git worktree remove")

    def judge(self):
        for entry in self.ledger.pending():
            self.place(entry)
        for path, identity in self.ledger.staged:
            self.place_staged(path, identity)
        self.place_commits()
        self.complaints += self.ledger.complaints
        self.look_for_secrets()
        if self.run.receipt:
            compare_receipt(self)
        compare_stores(self)
        return self

    def is_last_moment(self, since):
        """Whether it came to be as it is when the last look was over already."""
        return self.last_look is not None and since >= self.last_look

    # Files.

    def place(self, entry):
        item = entry.item
        fate = self.fate_of(entry)
        if fate is None:
            self.verdict.losses.append(str(item))
            return
        self.verdict.note(fate, item.size)
        if fate != "stays" and not self.is_gone and not self.ledger.began_removal and item.path not in self.world.changed_by_hooks:
            self.complaints.append(f"{item.path!r} is no more as it was, before any removal ({fate})")

    def fate_of(self, entry):
        item, around = entry.item, self.around
        if version_at(self.world, item.path) == item.version:
            return "stays"
        if around.holds(around.remote_files, item, item.identity):
            return "remote"
        if (item.path, item.identity) in around.vault:
            return "vault"
        if around.holds(around.local_files, item, item.identity):
            return "local"
        if around.holds(around.tracking_files, item, item.identity):
            return "tracking-reference"
        if self.is_converted(item):
            return "filters"
        if item.path in self.world.changed_by_hooks and self.is_replaced(item):
            return "hooks-change"
        if item.path in self.world.changed_unseen and item.standing == "tracked" and self.is_replaced(item):
            return "same-second"
        if item.standing == "tracked" and self.went_with_its_commit(item):
            return "lying-git" if self.run.lied_about_remotes else "last-moment"
        moved = self.world.moved_by_hooks.get(item.path)
        if moved in self.ledger.first_seen:
            # An attempt that stopped left it there, and the review of the next one showed it as ignored.
            return self.fate_of(replace(entry, item=replace(item, path=moved, standing="ignored")))
        if item.standing != "ignored" or item.path.startswith(tuple(self.world.precious)):
            return None
        if self.is_last_moment(entry.since):
            return "last-moment"
        told = Told(self.ledger.shown_after(self.ledger.first_seen[item.path]))
        return let_go.name_of_ignored(item, told, self.ledger.is_in_reviewed_folder(item.path), self.world.options)

    def is_converted(self, item):
        """Whether git holds what its own conversion made of exactly these bytes."""
        places = (self.around.remote_files, self.around.local_files)
        if item.stored and item.stored != item.identity:
            return any(self.around.holds(files, item, item.stored) for files in places)
        keeps_no_bit = item.standing != "ignored" and item.kind == "file" and self.world.setting("core.fileMode") == "false"
        return keeps_no_bit and any(self.around.holds_bytes(files, item) for files in places)

    def is_replaced(self, item):
        """Whether another version of the file is what was preserved, or lies in its place."""
        preserving = {self.receipt.get("preservedCommitSHA")} | {
            sha for name, sha in self.around.branches.items() if name.startswith("refs/heads/cairnfield/")}
        kept = self.around.remote_commits | self.around.local_commits
        return content_of(self.world.path(item.path)) is not None or any(
            path == item.path for commit in preserving & kept for path, _, _ in tree_of(self.world, self.world.project, commit))

    def place_staged(self, path, identity):
        if not self.is_gone and (path, identity) in self.still_staged:
            return self.verdict.note("stays")
        pairs = {(path, identity) for path, identity, _ in self.around.remote_files | self.around.local_files}
        self.verdict.note("remote" if (path, identity) in pairs else "staged-version")
        return None

    # Commits and references.

    def place_commits(self):
        for commit in self.ledger.commits:
            self.place_commit(commit)
        kept = self.around.remote_commits | self.around.local_commits
        for commit in self.ledger.remembered:
            self.verdict.note("local" if commit in kept else "head-reflog" if self.is_gone else "stays")
        for commit in self.ledger.own_commits:
            if self.is_gone and commit not in kept:
                self.verdict.losses.append(f"commit {commit} of a reference of the worktree alone")
        for _ in self.ledger.own_references:
            self.verdict.note("worktree-references" if self.is_gone else "stays")
        for stash in self.ledger.stashes:
            if stash in self.around.local_commits:
                self.verdict.note("local")
            else:
                self.verdict.losses.append(f"stash {stash}")

    def place_commit(self, commit):
        around = self.around
        if commit in around.remote_commits:
            self.verdict.note("remote")
        elif commit in around.local_commits:
            self.verdict.note("local")
        elif not self.is_gone and commit in self.present_commits():
            self.verdict.note("stays")
        elif commit in around.tracking_commits:
            self.verdict.note("tracking-reference")
        elif self.name_of_commit(commit):
            self.verdict.note(self.name_of_commit(commit))
        else:
            self.verdict.losses.append(f"commit {commit}")

    def name_of_commit(self, commit):
        if self.is_last_moment(self.ledger.commits[commit]):
            return "last-moment"
        believed = self.run.lied_about_remotes and self.ledger.was_detached and not self.run.review["preserves"]
        return "lying-git" if believed else None

    def went_with_its_commit(self, item):
        """Whether it was as committed, and somebody took away what held the commit, or git lied about that."""
        around, ledger = self.around, self.ledger
        kept = around.remote_commits | around.local_commits
        taken = ledger.heads & (ledger.commits.keys() if self.run.lied_about_remotes else ledger.orphaned.keys()) - kept
        return any(self.name_of_commit(head) and
                   around.holds(tree_of(self.world, self.world.project, head), item, item.stored or item.identity)
                   for head in taken)

    def present_commits(self):
        if not hasattr(self, "present"):
            self.present = shas(self.world.inside("rev-list", "--reflog", "HEAD", "--"))
        return self.present

    # What must not be where it is.

    def look_for_secrets(self):
        new = self.around.remote_tips - self.ledger.first_remote_tips
        pushed = {pair for commit in new for pair in self.world.trees.get(commit, ())}
        paths = {(path, identity) for path, identity, _ in pushed}
        for entry in self.ledger.pending():
            item = entry.item
            if item.standing == "ignored" and is_secret(item.path) and (item.path, item.identity) in paths:
                self.complaints.append(f"{item.path!r} is ignored and looks sensitive, and it was pushed")
        for path, mode in open_to_others(self.world):
            self.complaints.append(f"{path!r} has the mode {mode}")
