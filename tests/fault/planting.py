"""The proof of the checker: every kind of loss, planted into the end of a run in every kind of world. What is planted has to be
named, and nothing may be named where nothing was planted."""

import copy
import json
import os
import random
import shutil
from pathlib import Path

import account as accounts
import attempt as attempts
import deeds
import scenario
from check import Judgement
from ledger import Ledger

FURNITURE = ["stashes", "edit", "untracked", "executable_bit", "links", "secret", "build_output", "second_worktree",
             "tags_and_notes", "main_has_changes"]


class Kind:
    """A kind of world, made of a run. `outcome`: how the run ends, so that it is the kind that it is meant to be."""

    def __init__(self, names=(), outcome="succeeded", stops=(), faults=None, options=None, object_format="sha1", again=False):
        self.names = [*FURNITURE, *(names or ["commits_ahead"])]
        self.outcome = outcome
        self.stops = stops
        self.faults = faults or {}
        self.options = options or {}
        self.object_format = object_format
        self.again = again


def at(step, *names):
    return [attempts.Stop(step, deed=deeds.ALL[name]) for name in names]


WORLDS = {
    "plain": Kind(),
    "sha256": Kind(object_format="sha256"),
    "detached": Kind(["detached_with_commits"]),
    "converted": Kind(["line_ends", "commits_ahead"]),
    "losing-filter": Kind(["clean_filter_that_loses"]),
    "rewriting-hook": Kind(["hook_rewrites"]),
    "unseen-change": Kind(["same_second"]),
    "refusing-hook": Kind(["hook_refuses"], "failed"),
    "late-file": Kind([], "succeeded", at("before git worktree remove", "add_nested_ignored")),
    "late-commit": Kind(["pushed_branch"], "succeeded", at("before git worktree remove", "commit_nothing")),
    "interfered": Kind([], "partiallyCompleted", at("after git push", "edit_tracked")),
    "interfered-twice": Kind([], "partiallyCompleted", at("after git commit", "append_to_new") + at("after git push", "amend")),
    "stashed": Kind([], "partiallyCompleted", at("after git push", "stash") + at("before archive", "unstash")),
    "led-elsewhere": Kind([], "partiallyCompleted", at("after git push", "lead_git_elsewhere")),
    "remote-dropped": Kind([], "partiallyCompleted", at("before git worktree remove", "remote_drops_the_branch")),
    "lied-to": Kind(["detached_with_commits_pushed"], "succeeded", faults={"review git branch -r --contains": "rubbish"}),
    "failing-command": Kind([], "succeeded", faults={"git push": "failAfter"}, again=True),
    "killed": Kind([], "succeeded", [attempts.Stop("stage verifyingRemote", kill="everything", delay=-1.0)], again=True),
    "secret-left": Kind(options={"sensitive": "no"}),
}


class Scene:
    """The end of a run, to be damaged and made whole again."""

    def __init__(self, workshop, name):
        kind = WORLDS[name]
        self.kind = kind
        self.world = workshop.world("planted-" + name, kind.object_format)
        self.world.options.update(kind.options)
        scenario.furnish(self.world, kind.names, random.Random(name))
        self.ledger = Ledger.begin(self.world)
        self.run = attempts.attempt(self.world, workshop.program, self.ledger, list(kind.stops), kind.faults)
        if kind.again:
            Judgement(self.world, self.ledger, self.run).judge()
            self.world.ahead += 60
            self.run = attempts.attempt(self.world, workshop.program, self.ledger)
        self.run.must_store = True
        self.whole = self.world.base.with_name(self.world.base.name + "-whole")
        shutil.copytree(self.world.base, self.whole, symlinks=True)

    def outcome(self):
        return (self.run.receipt or {}).get("outcome") or self.run.blocked

    def judged(self, plants=()):
        """({plant: what has to be named, None where it does not fit}, everything that the checker says)"""
        shutil.rmtree(self.world.base)
        shutil.copytree(self.whole, self.world.base, symlinks=True)
        memo = {id(self.world): self.world}
        ledger = copy.deepcopy(self.ledger, memo)
        run = copy.deepcopy(self.run, memo)
        state = State(self.world, ledger, run)
        expected = {plant.__name__: plant(state) for plant in plants}
        judgement = Judgement(self.world, ledger, run).judge()
        return expected, judgement.verdict.losses + judgement.complaints

    def remove(self):
        shutil.rmtree(self.world.base)
        shutil.rmtree(self.whole)


class State:
    def __init__(self, world, ledger, run):
        self.world = world
        self.ledger = ledger
        self.run = run
        self.is_gone = not os.path.lexists(world.worktree)

    def git(self, *words, **options):
        return self.world.git(self.world.project, *words, **options)

    def has(self, name):
        return name in self.ledger.seen

    def pending(self, path):
        return [entry.item for entry in self.ledger.pending() if entry.item.path == path]

    def change(self, path, mode=None, content=b""):
        """Makes every commit that a branch holds, here and at the remotes, one without this file, or with another one in its
        place; in the worktree as well."""
        for repository in (self.world.project, *self.world.hubs):
            references = self.world.git(repository, "for-each-ref", "--format=%(refname) %(objectname)", "refs/heads",
                                        "refs/tags", "refs/remotes").decode().splitlines()
            for line in references:
                name, commit = line.split(" ", 1)
                has = any(path == other for other, _, _ in accounts.tree_of(self.world, repository, commit))
                if has and not name.endswith("/HEAD"):
                    self.rewrite(repository, name, commit, path, mode, content)
        place = self.world.path(path)
        if os.path.lexists(place):
            os.unlink(place)
            if mode:
                self.world.write(path, content, 0o755 if mode == "100755" else 0o644)

    def rewrite(self, repository, name, commit, path, mode, content):
        w, index = self.world, self.world.base / "rewritten-index"
        index.unlink(missing_ok=True)
        usual = dict(w.environment)
        w.environment["GIT_INDEX_FILE"] = str(index)
        try:
            w.git(repository, "read-tree", commit)
            blob = w.git(repository, "hash-object", "-w", "--stdin", stdin=content).decode().strip()
            w.git(repository, "update-index", "--index-info", stdin=f"{mode or 0} {blob}\t".encode() + path + b"\n")
            tree = w.git(repository, "write-tree").decode().strip()
            new = w.git(repository, "commit-tree", tree, "-m", "Rewritten").decode().strip()
            w.git(repository, "update-ref", name, new)
        finally:
            w.environment = usual

    def content(self, path):
        return Path(os.fsdecode(os.path.join(os.fsencode(self.world.base), path)))


# What is taken away. Each returns what the checker has to say, or None where a world has no such thing.

def edited_file(state):
    items = state.pending(b"src/a.txt")
    if not items or b"src/a.txt" in state.world.changed_by_hooks:
        return None
    state.change(b"src/a.txt", "100644", b"something else\n")
    return str(items[-1])


def untracked_file(state):
    items = state.pending(b"new.txt")
    state.change(b"new.txt")
    return str(items[-1])


def executable_bit(state):
    items = state.pending(b"tool.sh")
    if b"tool.sh" in state.world.changed_unseen or not items[-1].executable:
        return None
    state.change(b"tool.sh", "100644", b"#!/bin/sh\n")
    return str(items[-1])


def link(state):
    items = state.pending(b"link")
    state.change(b"link", "120000", b"elsewhere")
    if os.path.lexists(state.world.path(b"link")):
        os.unlink(state.world.path(b"link"))
    return str(items[-1])


def converted_file(state):
    items = state.pending(b"crlf.txt")
    if not items:
        return None
    state.change(b"crlf.txt", "100644", b"three\nfour\n")
    return str(items[-1])


def file_beside_a_hook(state):
    if not state.world.changed_by_hooks:
        return None
    state.change(b"src/a.txt")
    return "src/a.txt"


def secret_in_the_vault(state):
    if state.world.options["sensitive"] == "no" or not state.pending(b".env"):
        return None
    for copy_ in vault_copies(state):
        copy_.write_bytes(b"damaged")
    if not state.is_gone:
        os.unlink(state.world.path(b".env"))
    return "ignored file b'.env'"


def vault_index(state):
    if not state.is_gone or not vault_copies(state):
        return None
    (state.world.support / "recovery-vault.json").write_text("[]")
    return "ignored file b'.env'"


def mode_of_a_copy(state):
    copies = vault_copies(state)
    if not copies:
        return None
    copies[0].chmod(0o644)
    return "has the mode 0o644"


def mode_of_the_vault(state):
    if not vault_copies(state):
        return None
    (state.world.support / "Recovery").chmod(0o755)
    return "has the mode 0o755"


def vault_copies(state):
    return [path for path in (state.world.support / "Recovery").rglob("*") if path.is_file()]


def stash(state):
    state.git("stash", "drop", "--quiet")
    return "stash "


def commits(state):
    """The branch and the recovery branch go back, everywhere."""
    lost = [commit for commit in state.ledger.commits if not is_in_main(state, commit)]
    if not lost:
        return None
    for repository in (state.world.project, *state.world.hubs):
        for line in state.world.git(repository, "for-each-ref", "--format=%(refname)", "refs").decode().split():
            is_main = line in ("refs/heads/main", "refs/remotes/origin/HEAD", "refs/remotes/origin/main", "refs/stash")
            if not is_main:
                state.world.git(repository, "update-ref", "-d", line)
    if not state.is_gone:
        state.world.inside("reflog", "expire", "--expire=now", "--all")
        state.world.inside("checkout", "--quiet", "--force", "--detach", "main")
        shutil.rmtree(os.path.join(state.world.admin, b"logs"))
    return "commit " + lost[0]


def is_in_main(state, commit):
    return state.git("merge-base", "--is-ancestor", commit, "refs/remotes/origin/main", check=False) is not None


def own_branch_moved(state):
    state.git("update-ref", "refs/heads/feature", "main~1")
    return "refs/heads/feature of project"


def branch_deleted(state):
    state.git("update-ref", "-d", "refs/heads/second")
    return "refs/heads/second of project"


def tag_deleted(state):
    state.git("update-ref", "-d", "refs/tags/v1")
    return "refs/tags/v1 of project"


def remote_branch_moved(state):
    state.world.git(state.world.hub, "update-ref", "refs/heads/main", "refs/heads/main~1")
    return "refs/heads/main of hub.git"


def remote_got_more(state):
    state.world.git(state.world.hub, "update-ref", "refs/heads/unasked", "refs/heads/main")
    return "refs/heads/unasked of hub.git"


def main_checkout_switched(state):
    state.git("symbolic-ref", "HEAD", "refs/heads/feature")
    return "branch of project (checkout)"


def main_checkout_staged(state):
    (state.world.project / "unasked.txt").write_bytes(b"unasked\n")
    state.git("add", "unasked.txt")
    return "index of project (checkout)"


def file_of_the_main_checkout(state):
    (state.world.project / "kept.txt").write_bytes(b"changed\n")
    return "b'kept.txt' of project (files)"


def file_deleted_in_the_main_checkout(state):
    (state.world.project / "README.md").unlink()
    return "b'README.md' of project (files)"


def bit_in_the_main_checkout(state):
    (state.world.project / "README.md").chmod(0o755)
    return "b'README.md' of project (files)"


def file_of_another_worktree(state):
    (state.world.base / "second" / "theirs.txt").unlink()
    return "b'theirs.txt' of second (files)"


def other_worktree(state):
    shutil.rmtree(state.world.base / "second")
    return "of " + str(state.world.base / "second")


def secret_pushed(state):
    items = state.pending(b".env")
    if not items or not (state.run.receipt or {}).get("recoveryBranch"):
        return None
    source = state.world.path(b".env") if os.path.exists(state.world.path(b".env")) else (vault_copies(state) or [None])[0]
    if source is None:
        return None
    branch = state.run.receipt["recoveryBranch"]
    tip = state.world.git(state.world.hub, "rev-parse", "--verify", "--quiet", "refs/heads/" + branch, check=False)
    if not tip:
        return None
    with open(source, "rb") as file:
        state.rewrite(state.world.hub, "refs/heads/" + branch, tip.decode().strip(), b".env", "100644", file.read())
    return "b'.env' is ignored and looks sensitive, and it was pushed"


def telling(state):
    """The screen kept silent about build output."""
    if not state.is_gone:
        return None
    for screen in state.ledger.screens:
        screen.event["ignored"] = [entry for entry in screen.event["ignored"] if entry["name"] != "build"]
    return "ignored file b'build/a.o'"


def line_of_the_sheet(state):
    """It is on the pane and not on the sheet."""
    if not state.is_gone:
        return None
    for screen in state.ledger.screens:
        screen.event["rebuildable"] = []
    return "ignored file b'build/a.o'"


def preserved_commit_at_the_remote(state):
    receipt = state.run.receipt or {}
    if receipt.get("outcome") != "succeeded" or not receipt.get("preservedCommitSHA"):
        return None
    state.world.git(state.world.hub, "update-ref", "-d", "refs/heads/" + receipt["recoveryBranch"])
    return "no remote holds"


def outcome_of_the_receipt(state):
    if not state.run.receipt:
        return None
    if state.is_gone:
        state.run.receipt.update(id="00000000-0000-0000-0000-000000000000", outcome="failed", removalSucceeded=False,
                                 errorSummary="made up")
        return "the worktree is gone"
    state.run.receipt.update(id="00000000-0000-0000-0000-000000000000", outcome="succeeded")
    return "the worktree is there"


def branch_of_the_receipt(state):
    """The receipt names a branch that does not hold what was reviewed."""
    receipt = state.run.receipt or {}
    branch, head = receipt.get("recoveryBranch"), receipt.get("originalHeadSHA")
    is_touched = any(key == f"refs/heads/{branch}" for _, key in state.ledger.touched)
    if not branch or is_in_main(state, head) or is_touched:
        return None
    state.git("update-ref", "refs/heads/" + branch, "main")
    return "does not hold"


def stored_receipt(state):
    if not state.run.receipt:
        return None
    file = state.world.support / "cleanup-receipts.json"
    if not file.exists():
        return None
    file.write_text(json.dumps([]))
    return "the receipt was not stored"


RARE = {"converted_file", "file_beside_a_hook"}  # fit one kind of world
# Those of one set do not get in each other's way: each has words of its own, and all are planted at once.
SETS = [[branch_deleted, tag_deleted, remote_branch_moved, remote_got_more, main_checkout_staged, file_of_the_main_checkout,
         file_deleted_in_the_main_checkout, file_of_another_worktree, mode_of_a_copy, stored_receipt, stash],
        [bit_in_the_main_checkout, main_checkout_switched, other_worktree, mode_of_the_vault, own_branch_moved,
         outcome_of_the_receipt, telling],
        [edited_file, untracked_file, link, converted_file, secret_in_the_vault],
        [executable_bit, vault_index, line_of_the_sheet], [file_beside_a_hook], [commits], [secret_pushed],
        [preserved_commit_at_the_remote], [branch_of_the_receipt]]
LOSSES = [loss for losses in SETS for loss in losses]
