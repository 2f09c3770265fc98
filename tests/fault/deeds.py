"""What somebody may do between any two steps of a cleanup: a person at work in the worktree, a program, another clone. Each is
a function of the world and the run, and must not fail when the worktree has gone."""

import os
import shutil
from pathlib import Path

ALL = {}


def deed(function):
    def careful(world, run):
        try:
            function(world, run)
        except (OSError, shutil.Error):
            pass  # what it would have touched is gone
    careful.__name__ = function.__name__
    ALL[function.__name__] = careful
    return careful


def write(world, name, content):
    if os.path.isdir(world.worktree):
        world.write(name, content)


def run_git(world, *words):
    if os.path.isdir(world.worktree):
        world.here(*words, check=False)


def branch_of(run):
    return (run.review or {}).get("branch") or "cairnfield/recovery/project/unknown"


@deed
def edit_tracked(world, run):
    write(world, b"src/a.txt", b"edited meanwhile\n")


@deed
def edit_another(world, run):
    write(world, b"tool.sh", b"edited meanwhile\n")


@deed
def append_to_new(world, run):
    write(world, b"new.txt", b"appended meanwhile\n")


@deed
def add_untracked(world, run):
    write(world, b"late.txt", b"late\n")


@deed
def add_secret(world, run):
    write(world, b"late.key", b"late secret\n")


@deed
def change_secret(world, run):
    write(world, b".env", b"TOKEN=changed meanwhile\n")


@deed
def change_secret_in_place(world, run):
    """Of the same size and time as before."""
    path = world.path(b".env")
    status = os.stat(path)
    with open(path, "r+b") as file:
        first = file.read(1)
        file.seek(0)
        file.write(bytes([first[0] ^ 1]))
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))


@deed
def edit_unseen(world, run):
    """A tracked file, of the same size and time as before."""
    path = world.path(b"tool.sh")
    status = os.stat(path)
    with open(path, "r+b") as file:
        file.write(b"#!/bin/zs")
    os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))
    if not world.here("--no-optional-locks", "status", "--porcelain", "tool.sh", check=False):
        world.changed_unseen.add(b"tool.sh")


@deed
def add_unknown_ignored(world, run):
    write(world, b"scratch-late", b"late\n")


@deed
def add_nested_ignored(world, run):
    write(world, b"src/late.local", b"late\n")


@deed
def delete_tracked(world, run):
    os.unlink(world.path(b"README.md"))


@deed
def delete_secret(world, run):
    os.unlink(world.path(b".env"))


@deed
def stage_all(world, run):
    run_git(world, "add", "--all")


@deed
def commit_all(world, run):
    write(world, b"committed-late.txt", b"late\n")
    run_git(world, "add", "--all")
    run_git(world, "commit", "--quiet", "--no-verify", "--no-gpg-sign", "--message", "Meanwhile")


@deed
def commit_nothing(world, run):
    run_git(world, "commit", "--quiet", "--allow-empty", "--no-verify", "--no-gpg-sign", "--message", "Meanwhile")


@deed
def commit_and_push(world, run):
    commit_nothing(world, run)
    run_git(world, "push", "--quiet", world.remote, "HEAD")


@deed
def amend(world, run):
    run_git(world, "commit", "--quiet", "--amend", "--no-verify", "--no-gpg-sign", "--message", "Amended meanwhile")


@deed
def stash(world, run):
    write(world, b"src/b.txt", b"to be stashed\n")
    run_git(world, "stash", "push", "--quiet", "--include-untracked")


@deed
def unstash(world, run):
    run_git(world, "stash", "apply", "--quiet")


@deed
def switch_to_new(world, run):
    run_git(world, "switch", "--quiet", "--create", "meanwhile")
    run.may("refs/heads/meanwhile")  # whoever goes to another branch gets the commit there


@deed
def switch_back(world, run):
    run_git(world, "switch", "--quiet", "feature")
    run.may("refs/heads/feature")


@deed
def detach(world, run):
    run_git(world, "switch", "--quiet", "--detach")


@deed
def detach_and_commit(world, run):
    detach(world, run)
    commit_nothing(world, run)


@deed
def reset_back(world, run):
    run_git(world, "reset", "--quiet", "--soft", "HEAD~1")


@deed
def start_rebase(world, run):
    write(world, b"src/b.txt", b"put aside by a rebase\n")
    run_git(world, "rebase", "--autostash", "--exec", "false", "HEAD~1")


@deed
def overlook(world, run):
    run_git(world, "update-index", "--assume-unchanged", "tool.sh")
    write(world, b"tool.sh", b"changed and overlooked\n")


@deed
def lock(world, run):
    run_git(world, "worktree", "lock", os.fsdecode(world.worktree))


@deed
def move_worktree(world, run):
    target = os.path.join(os.fsencode(world.base), b"moved-away")
    world.git(world.project, "worktree", "move", os.fsdecode(world.worktree), os.fsdecode(target), check=False)
    if os.path.isdir(target) and not os.path.lexists(world.worktree):
        world.move(target)


@deed
def add_inner_repository(world, run):
    if os.path.isdir(world.worktree):
        world.git(world.base, "init", "--quiet", "--template=", os.fsdecode(world.path(b"logs/inner")))
        write(world, b"logs/inner/own.txt", b"own\n")


@deed
def collect_garbage(world, run):
    world.git(world.project, "gc", "--quiet", "--prune=now", check=False)


@deed
def prune_worktrees(world, run):
    world.git(world.project, "worktree", "prune", "--expire=now", check=False)


@deed
def make_local_branch(world, run):
    world.git(world.project, "branch", branch_of(run), "main", check=False)


@deed
def change_remote(world, run):
    world.git(world.project, "remote", "set-url", world.remote, str(world.base / "nowhere.git"), check=False)


@deed
def other_pushes_the_branch(world, run):
    other = world.second_clone()
    world.git(other, "commit", "--quiet", "--allow-empty", "--message", "Theirs")
    world.git(other, "push", "--quiet", "origin", f"HEAD:refs/heads/{branch_of(run)}", check=False)


@deed
def other_moves_the_branch(world, run):
    other = world.second_clone()
    world.git(other, "fetch", "--quiet", "origin")
    if world.git(other, "switch", "--quiet", branch_of(run), check=False) is not None:
        world.git(other, "commit", "--quiet", "--allow-empty", "--message", "On top")
        world.git(other, "push", "--quiet", "origin", branch_of(run), check=False)


@deed
def other_pushes_main(world, run):
    other = world.second_clone()
    world.git(other, "commit", "--quiet", "--allow-empty", "--message", "Theirs on main")
    world.git(other, "push", "--quiet", "origin", "HEAD:main", check=False)


@deed
def remote_drops_the_branch(world, run):
    if "remote_is_itself" in world.features:
        return  # it would be the worktree's own branch
    world.git(world.hubs[0], "update-ref", "-d", f"refs/heads/{branch_of(run)}", check=False)


@deed
def remote_goes_away(world, run):
    """For the rest of the run; the last check finds it again."""
    away = world.base / "away.git"
    os.rename(world.hub, away)
    world.undo.append(lambda: os.rename(away, world.hub))


@deed
def tag_of_that_name(world, run):
    world.git(world.project, "tag", branch_of(run), "main", check=False)


@deed
def remote_moves_inside(world, run):
    if os.path.isdir(world.worktree):
        os.makedirs(world.path(b"logs"), exist_ok=True)
        os.rename(world.hub, world.path(b"logs/hub.git"))
        os.symlink(world.path(b"logs/hub.git"), world.hub)


@deed
def lead_git_elsewhere(world, run):
    """The worktree's Git file names the main repository from now on."""
    git_file = Path(os.fsdecode(world.path(b".git")))
    run.may_lead_astray()
    if git_file.is_file():
        before = git_file.read_bytes()
        git_file.write_bytes(b"gitdir: " + os.fsencode(world.project / ".git") + b"\n")
        world.undo.append(lambda: git_file.is_file() and git_file.write_bytes(before))


@deed
def remote_gets_same_ending(world, run):
    world.git(world.hubs[0], "update-ref", f"refs/heads/aaa/{branch_of(run)}", "refs/heads/main", check=False)


@deed
def break_configuration(world, run):
    config = world.project / ".git" / "config"
    config.write_bytes(config.read_bytes() + b"\n[broken\n")
    world.undo.append(lambda: config.write_bytes(config.read_bytes().replace(b"\n[broken\n", b"")))


# Deeds that only somebody else than the person would do to their files: they must lead to refusals, not to lies.

@deed
def damage_vault_copy(world, run):
    if run.began_removal:
        return  # nobody could help that
    for folder, _, files in os.walk(os.fsencode(world.support / "Recovery")):
        for name in files:
            run.damaged.add(os.path.join(folder, name))
            with open(os.path.join(folder, name), "ab") as file:
                file.write(b"damage")


@deed
def leave_lock(world, run):
    with open(os.path.join(world.own_git_directory(), b"index.lock"), "xb"):
        pass
