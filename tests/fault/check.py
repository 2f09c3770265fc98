"""Judges one run: every item of an account has to be somewhere, or to stand in docs/guarantees.md under the name that is
given to it here. And a receipt has to say the truth."""

import json
import os
import re

from account import Verdict, blob, content_of, look_around, references, shas, staged

NUL_BYTE = re.compile("\0([0-9a-f]{2})")
REBUILDABLE = {"node_modules", "build", "dist", "out", "target", "__pycache__", ".venv", "coverage", ".cache"}
SENSITIVE_NAME = re.compile(rb"^(\.env.*|.*\.env|credentials|id_rsa.*|.*secret.*|.*credential.*|.*\.(key|pem))$", re.I)

# What the rules let go, as docs/guarantees.md tells it. Nothing else may be lost.
NAMES = {"ignored-rebuildable", "ignored-unknown", "ignored-later", "secret-nested", "secret-directory", "secret-unselected",
         "secret-link", "staged-version", "head-reflog", "worktree-references", "tracking-reference", "hooks-change",
         "filters", "same-second", "last-moment", "lying-git"}


def bytes_of(text):
    """A path as the stores write it: U+0000 and two digits stand for a byte that is no text."""
    parts = NUL_BYTE.split(text)
    encoded = [part.encode() if number % 2 == 0 else bytes([int(part, 16)]) for number, part in enumerate(parts)]
    return b"".join(encoded)


def stored(world, name):
    """The content of a store; None when it cannot be read."""
    file = world.support / name
    if not file.exists():
        return []
    try:
        return json.loads(file.read_bytes())
    except ValueError:
        return None


def vault_index(world):
    entries = stored(world, "recovery-vault.json") or []
    return [{key: bytes_of(value) if key.endswith("Path") else value for key, value in entry.items()}
            for entry in entries]


class Judgement:
    def __init__(self, world, account, run):
        self.world = world
        self.account = account
        self.run = run
        self.verdict = Verdict()
        self.complaints = []  # receipts that are not true, and changes that nobody asked for
        self.receipt = self.as_stored(run.receipt or {})
        self.index = vault_index(world)
        self.is_gone = not os.path.lexists(world.worktree)
        self.around = look_around(world, account, self.index, self.receipt.get("preservedCommitSHA"))
        self.still_staged = set() if self.is_gone else staged(world)
        self.shown = {entry["name"]: entry["class"] for entry in (run.review or {}).get("ignored", [])}

    def judge(self):
        for item in self.account.files.values():
            self.place(item)
        for path, identity in self.account.staged:
            self.place_staged(path, identity)
        self.place_commits()
        self.compare_references()
        if self.run.receipt:
            self.compare_receipt()
        self.compare_stores()
        return self

    def as_stored(self, receipt):
        """What is printed has its paths repaired; the store has their bytes."""
        for other in stored(self.world, "cleanup-receipts.json") or []:
            if other["id"] == receipt.get("id") and other["outcome"] == receipt["outcome"]:
                return other
        return receipt

    # Files.

    def place(self, item):
        fate = self.fate_of(item)
        if fate is None:
            self.lose(f"{item.standing} {item.kind} {item.path!r}")
        else:
            self.verdict.note(fate, item.size)
            is_ours = item.path not in self.world.changed_by_hooks
            if fate != "stays" and not self.is_gone and not self.run.began_removal and is_ours:
                self.complaints.append(f"{item.path!r} is no more as it was, before any removal ({fate})")

    def fate_of(self, item):
        found = content_of(self.world.path(item.path))
        if found and found[0] == item.kind and self.identity(found[1]) == item.identity:
            return "stays"
        pair = (item.path, item.identity)
        for fate, pairs in (("remote", self.around.remote_files), ("vault", self.around.vault),
                            ("local", self.around.local_files)):
            if pair in pairs:
                return fate
        if pair in self.around.tracking_files:
            return "tracking-reference"
        if item.path in self.world.changed_by_hooks:
            return "hooks-change"
        if item.path in self.world.changed_unseen:
            return "same-second"
        if item.standing != "ignored":
            return self.fate_of_filtered(item)
        return self.name_of_ignored(item)

    def identity(self, content):
        return blob(content, "sha256" if self.world.object_format == "sha256" else "sha1")

    def fate_of_filtered(self, item):
        if not self.world.filtered:
            return None
        for paths in (self.around.remote_files, self.around.local_files):
            if any(path == item.path for path, _ in paths):
                return "filters"
        return None

    def name_of_ignored(self, item):
        """What is shown of an ignored file is the top of its path."""
        top = item.path.split(b"/")[0]
        text = top.decode(errors="replace")
        shown = self.shown.get(text)
        is_deep = b"/" in item.path
        is_secret = bool(SENSITIVE_NAME.match(os.path.basename(item.path)))
        if shown is None:
            return None if not is_deep and is_secret else "ignored-later"
        if shown == "sensitive":
            if is_deep:
                return "secret-directory"
            if item.kind == "link":
                return "secret-link"
            return "secret-unselected" if self.world.options["sensitive"] == "no" else None
        if is_secret:
            return "secret-nested"
        return "ignored-rebuildable" if shown == "rebuildable" else "ignored-unknown"

    def place_staged(self, path, identity):
        if not self.is_gone and (path, identity) in self.still_staged:
            return self.verdict.note("stays")
        pairs = self.around.remote_files | self.around.local_files
        self.verdict.note("remote" if (path, identity) in pairs else "staged-version")
        return None

    # Commits and references.

    def place_commits(self):
        for commit in self.account.commits:
            if commit in self.around.remote_commits:
                self.verdict.note("remote")
            elif commit in self.around.local_commits:
                self.verdict.note("local")
            elif not self.is_gone:
                self.verdict.note("stays")
            elif commit in self.around.tracking_commits:
                self.verdict.note("tracking-reference")
            else:
                self.lose(f"commit {commit}")
        for commit in self.account.remembered:
            is_kept = commit in self.around.remote_commits | self.around.local_commits
            self.verdict.note("local" if is_kept else "head-reflog" if self.is_gone else "stays")
        for name in self.account.own_references:
            self.verdict.note("worktree-references" if self.is_gone else "stays")
        present = references(self.world, self.world.project)
        for stash in self.account.stashes:
            if stash in self.around.local_commits:
                self.verdict.note("local")
            else:
                self.lose(f"stash {stash}")
        self.present_references = present

    def compare_references(self):
        """No branch or tag of anybody's moves or goes; only the branch that the receipt names may come and move."""
        recovery = "refs/heads/" + ((self.run.review or {}).get("branch") or "?")
        if self.run.liar:
            return  # git may have said that it went to the recovery branch without doing so
        for name, sha in self.account.references.items():
            now = self.present_references.get(name)
            if now != sha and name != recovery and not name.startswith("refs/remotes/") and name not in self.run.may_move:
                self.complaints.append(f"{name} was {sha}, is {now}")
        for hub in self.world.hubs:
            if not hub.exists():
                continue
            present = references(self.world, hub)
            for name, sha in self.account.remote_references.get(str(hub), {}).items():
                if present.get(name) != sha and name not in self.run.may_move and name != recovery:
                    self.complaints.append(f"{name} of {hub.name} was {sha}, is {present.get(name)}")

    def lose(self, what):
        if self.run.lied_about_remotes and what.startswith("commit"):
            self.verdict.note("lying-git")
        elif self.run.last_moment:
            self.verdict.note("last-moment")
        else:
            self.verdict.losses.append(what)

    # What is written down.

    def compare_receipt(self):
        receipt, say = self.receipt, self.complaints.append
        outcome = receipt["outcome"]
        succeeded = outcome == "succeeded"
        if succeeded != receipt["removalSucceeded"]:
            say("outcome and removalSucceeded differ")
        if succeeded and not self.is_gone:
            say("succeeded, but the worktree is there")
        if succeeded and self.listed():
            say("succeeded, but git lists the worktree")
        if succeeded and (receipt.get("errorSummary") is not None or receipt["finalStage"] != "completed"):
            say("succeeded with an error or another stage than completed")
        if not succeeded and not receipt.get("errorSummary"):
            say("not succeeded, and nothing says why")
        if not succeeded and self.is_gone and not self.run.removal_in_doubt and not self.is_unconfirmed():
            say(f"{outcome}, but the worktree is gone: {receipt.get('errorSummary')}")
        preserved = receipt.get("preservedCommitSHA")
        if succeeded and self.run.review["preserves"] and not preserved and not self.run.head_unknown:
            say("succeeded without the preserved commit's name")
        if succeeded and preserved and preserved not in self.around.remote_commits and not self.run.remote_acts_late:
            say(f"succeeded, but no remote holds {preserved}")
        if outcome == "partiallyCompleted" and not preserved:
            say("partiallyCompleted without a commit")
        if outcome == "failed" and preserved:
            say("failed with a commit in hand")
        known = self.around.remote_commits | self.around.local_commits | {self.account.head} | self.account.remembered
        if not self.is_gone:
            known |= shas(self.world.here("rev-list", "--walk-reflogs", "HEAD", "--", check=False))
        if preserved and preserved not in known and not self.run.liar:
            say(f"{preserved} is neither on a remote nor in the repository")
        for path in receipt["recoveryVaultPaths"]:
            self.compare_copy(bytes_of(path))

    def is_unconfirmed(self):
        """The worktree went, and then the remote did not confirm once more what it had confirmed before."""
        error = self.receipt["errorSummary"]
        return self.run.removal_ended and error.startswith(("Cairnfield could not confirm that", "The remote branch"))

    def compare_copy(self, path):
        entry = next((entry for entry in self.index if entry["storedPath"] == path), None)
        found = content_of(path)
        if entry is None or found is None:
            return self.complaints.append(f"the receipt names {path!r}, and the vault has no such copy")
        seen = self.run.contents_seen(entry["relativePath"])
        if self.identity(found[1]) not in seen and not (self.world.changed_by_hooks or self.run.vault_is_damaged):
            self.complaints.append(f"the copy {path!r} is not what the worktree held")
        return None

    def listed(self):
        output = self.world.git(self.world.project, "worktree", "list", "--porcelain", "-z", check=False) or b""
        return b"worktree " + self.world.worktree + b"\0" in output

    def compare_stores(self):
        receipts = stored(self.world, "cleanup-receipts.json")
        if receipts is None or stored(self.world, "recovery-vault.json") is None:
            return self.complaints.append("a store cannot be read")
        told = self.run.receipt
        if not told or not self.run.must_store or self.run.liar:
            return None  # what a lying git printed need not be text
        kept = next((receipt for receipt in receipts if receipt["id"] == told["id"]), None)
        if kept is None:
            return self.complaints.append("the receipt was not stored")
        plain = ("outcome", "finalStage", "removalSucceeded", "preservedCommitSHA", "recoveryBranch", "date", "safety")
        if any(kept.get(key) != told.get(key) for key in plain):
            self.complaints.append("the stored receipt is another one")
        return None
