"""What a repository can be like: its history, its shape, its hooks and its settings."""

import os
from pathlib import Path

from features import feature
from features_work import some_bytes


def add_commit(w, name, content):
    w.write(name, content)
    w.here("add", "--", os.fsdecode(name))
    w.commit("Add " + os.fsdecode(name))


@feature("commits")
def commits_ahead(w, rng):
    for number in range(rng.randrange(1, 4)):
        add_commit(w, b"ahead%d.txt" % number, some_bytes(rng))


@feature("commits")
def pushed_branch(w, rng):
    add_commit(w, b"pushed.txt", some_bytes(rng))
    w.here("push", "--quiet", "--set-upstream", "origin", "feature")


@feature("commits")
def pushed_and_more(w, rng):
    pushed_branch(w, rng)
    add_commit(w, b"more.txt", some_bytes(rng))


@feature("commits")
def merged(w, rng):
    add_commit(w, b"merged.txt", some_bytes(rng))
    w.here("push", "--quiet", "origin", "HEAD:main")


@feature("commits")
def amended(w, rng):
    add_commit(w, b"first.txt", some_bytes(rng))
    w.write(b"first.txt", some_bytes(rng))
    w.here("commit", "--quiet", "--all", "--amend", "--message", "Amended")


@feature("commits")
def reset_away(w, rng):
    add_commit(w, b"away.txt", some_bytes(rng))
    w.here("reset", "--quiet", "--hard", "HEAD~1")


@feature("commits")
def remote_is_ahead(w, rng):
    other = w.second_clone()
    (other / "theirs.txt").write_bytes(some_bytes(rng))
    w.git(other, "add", "theirs.txt")
    w.git(other, "commit", "--quiet", "--message", "Theirs")
    w.git(other, "push", "--quiet", "origin", "main")


@feature()
def stashes(w, rng):
    for number in range(2):
        w.write(b"src/a.txt", b"stashed %d " % number + some_bytes(rng))
        w.here("stash", "push", "--quiet")


@feature()
def stash_with_untracked(w, rng):
    w.write(b"put-aside.txt", some_bytes(rng))
    w.here("stash", "push", "--quiet", "--include-untracked")


@feature("head")
def detached(w, rng):
    w.here("switch", "--quiet", "--detach")


@feature("head")
def detached_with_commits(w, rng):
    w.here("switch", "--quiet", "--detach")
    w.here("commit", "--quiet", "--allow-empty", "--no-verify", "--message", "On no branch")


@feature("head")
def detached_with_commits_pushed(w, rng):
    detached_with_commits(w, rng)
    w.here("push", "--quiet", "origin", "HEAD:refs/heads/detached-work")


@feature("head")
def detached_at_a_stale_copy(w, rng):
    """A commit that the remote had once, and of which only the copy of its branch here still knows."""
    w.here("switch", "--quiet", "--detach")
    w.here("commit", "--quiet", "--allow-empty", "--no-verify", "--message", "Forgotten there")
    w.here("push", "--quiet", "origin", "HEAD:refs/heads/forgotten")
    w.git(w.hub, "update-ref", "-d", "refs/heads/forgotten")


@feature("head")
def unborn(w, rng):
    w.here("checkout", "--quiet", "--orphan", "newborn")
    w.refusing = True


@feature("operation", refusing=True)
def merge_conflict(w, rng):
    conflict(w, "merge", "--quiet", "rival")


@feature("operation", refusing=True)
def rebase_conflict(w, rng):
    conflict(w, "rebase", "--quiet", "rival")


@feature("operation", refusing=True)
def cherry_pick_conflict(w, rng):
    conflict(w, "cherry-pick", "rival")


def conflict(w, *words):
    w.here("stash", "push", "--quiet", "--include-untracked", check=False)
    name = w.here("symbolic-ref", "--short", "HEAD", check=False)
    start = (name or w.here("rev-parse", "HEAD")).decode().strip()
    w.here("switch", "--quiet", "--create", "rival")
    add_commit(w, b"fought-over.txt", b"one side\n")
    w.here("switch", "--quiet", *([] if name else ["--detach"]), start)
    add_commit(w, b"fought-over.txt", b"other side\n")
    w.here(*words, check=False)


@feature("operation", refusing=True)
def bisecting(w, rng):
    w.here("bisect", "start", "HEAD", "HEAD~1", check=False)


@feature("operation")
def reverted_without_commit(w, rng):
    w.here("revert", "--no-commit", "HEAD", check=False)
    w.refusing = True


@feature("lock", refusing=True)
def locked(w, rng):
    w.git(w.project, "worktree", "lock", *rng.choice([[], ["--reason", "on a stick"]]), os.fsdecode(w.worktree))


@feature()
def sparse(w, rng):
    w.here("sparse-checkout", "set", "src")


@feature(refusing=True)
def sparse_and_present(w, rng):
    w.here("sparse-checkout", "set", "--no-cone", "/src/", check=False)
    w.write(b"kept.txt", b"written though left out\n")


@feature()
def overlooked(w, rng):
    w.here("update-index", rng.choice(["--assume-unchanged", "--skip-worktree"]), "tool.sh")


@feature(refusing=True)
def overlooked_and_changed(w, rng):
    w.here("update-index", rng.choice(["--assume-unchanged", "--skip-worktree"]), "tool.sh")
    w.write(b"tool.sh", b"changed " + some_bytes(rng))


@feature("submodule", refusing=True)
def submodule(w, rng):
    inner = w.base / "inner"
    w.git(w.base, "init", "--quiet", "--template=", f"--object-format={w.object_format}", str(inner))
    (inner / "part.txt").write_text("part\n")
    w.git(inner, "add", "part.txt")
    w.git(inner, "commit", "--quiet", "--message", "Part")
    w.here("submodule", "--quiet", "add", str(inner), "part")
    w.commit("Add a part")
    shape = rng.randrange(4)
    if shape == 0:
        w.write(b"part/part.txt", b"changed inside\n")
    elif shape == 1:
        w.write(b"part/more.txt", some_bytes(rng))
    elif shape == 2:
        w.here("submodule", "--quiet", "deinit", "--force", "part")
    else:
        w.here("submodule", "--quiet", "deinit", "--force", "part")
        w.write(b"part/left.txt", some_bytes(rng))


@feature(refusing=True)
def stat_is_ignored(w, rng):
    """Git takes files that it writes for unchanged from then on."""
    w.configure("core.ignoreStat", "true")
    w.write(b"src/b.txt", some_bytes(rng))
    w.here("add", "src/b.txt")
    w.commit("With ignored stat")
    if rng.randrange(2):
        w.write(b"src/b.txt", b"and changed unseen\n")


@feature("base", refusing=True)
def unknown_base(w, rng):
    """No branch of a well-known name, so that nothing can be counted against it."""
    for repository in (w.project, w.hub):
        w.git(repository, "branch", "--move", "main", "trunk", check=False)
    w.git(w.project, "remote", "set-head", "origin", "--delete", check=False)
    w.git(w.project, "update-ref", "-d", "refs/remotes/origin/main")


@feature("head")
def head_on_own_reference(w, rng):
    w.here("update-ref", "refs/worktree/wip", "HEAD")
    w.here("symbolic-ref", "HEAD", "refs/worktree/wip")
    w.here("commit", "--quiet", "--allow-empty", "--no-verify", "--message", "On a reference of its own")


@feature("head")
def head_on_symbolic_branch(w, rng):
    w.here("branch", "real")
    w.here("symbolic-ref", "refs/heads/alias", "refs/heads/real")
    w.here("symbolic-ref", "HEAD", "refs/heads/alias")


@feature()
def replaced_commit(w, rng):
    w.here("replace", "HEAD", "HEAD~1")


@feature("place")
def reached_by_a_link(w, rng):
    """The worktree was made through a link to the folder that it is in."""
    os.symlink(w.base, w.base / "loop")
    target = os.path.join(os.fsencode(w.base), b"loop", b"linked")
    w.git(w.project, "worktree", "add", "--quiet", "-b", "linked", os.fsdecode(target))
    w.move(os.path.join(os.fsencode(w.base), b"linked"))
    w.admin = os.fsencode(w.project / ".git" / "worktrees" / "linked")


@feature()
def own_references(w, rng):
    w.here("update-ref", "refs/worktree/mine", "HEAD")


@feature()
def tags_and_notes(w, rng):
    w.here("tag", "v1")
    w.here("notes", "add", "--message", "noted")


@feature()
def packed(w, rng):
    w.git(w.project, "pack-refs", "--all")
    w.git(w.project, "gc", "--quiet")


@feature()
def index_of_another_kind(w, rng):
    key, value = rng.choice([("index.version", "4"), ("core.splitIndex", "true"), ("feature.manyFiles", "true"),
                             ("index.sparse", "true"), ("core.untrackedCache", "true"), ("index.threads", "2")])
    w.configure(key, value)
    w.write(b"to-rewrite.txt", b"x\n")
    w.here("add", "to-rewrite.txt")


@feature()
def settings(w, rng):
    choices = [("status.showUntrackedFiles", "no"), ("push.default", "nothing"), ("core.fileMode", "false"),
               ("core.quotePath", "false"), ("commit.verbose", "true"), ("push.followTags", "true"),
               ("status.relativePaths", "true"), ("core.trustctime", "false"), ("core.checkStat", "minimal"),
               ("push.autoSetupRemote", "true"), ("branch.autoSetupMerge", "always"), ("commit.cleanup", "verbatim"),
               ("core.precomposeUnicode", "true"), ("diff.renames", "copies"), ("status.renames", "false"),
               ("submodule.recurse", "true"), ("core.logAllRefUpdates", "false"), ("remote.pushDefault", "origin"),
               ("user.useConfigOnly", "true"), ("core.preloadIndex", "false"), ("core.ignoreCase", "true"),
               ("extensions.worktreeConfig", "true"), ("push.recurseSubmodules", "on-demand"), ("core.symlinks", "false")]
    for key, value in rng.sample(choices, 3):
        w.configure(key, value)


@feature("place")
def odd_place(w, rng):
    name = rng.choice([b"two words", b"caf\xe9", b"new\nline", b'quo"te', b"-dash", "grün".encode(), b"project/.claude/worktrees/x",
                       b"node_modules"])
    target = os.path.join(os.fsencode(w.base), name)
    os.makedirs(os.path.dirname(target), exist_ok=True)
    w.git(w.project, "worktree", "move", os.fsdecode(w.worktree), os.fsdecode(target))
    w.move(target)


@feature("place")
def inside_the_project(w, rng):
    target = os.path.join(os.fsencode(w.project), b"nested")
    w.git(w.project, "worktree", "move", os.fsdecode(w.worktree), os.fsdecode(target))
    w.move(target)


@feature()
def second_worktree(w, rng):
    w.git(w.project, "worktree", "add", "--quiet", "-b", "second", str(w.base / "second"))
    (w.base / "second" / "theirs.txt").write_bytes(some_bytes(rng))


@feature()
def main_has_changes(w, rng):
    (w.project / "kept.txt").write_bytes(b"in the main worktree " + some_bytes(rng))


@feature()
def recovery_branch_in_the_way(w, rng):
    w.git(w.project, "branch", rng.choice(["cairnfield", "cairnfield/recovery"]))
    w.refusing = True


@feature("place")
def read_only_file(w, rng):
    w.write(b"ro.txt", some_bytes(rng), 0o400)
