"""What happens around a cleanup: hooks, signing, and remotes that reject, hang, lie or are not there."""

import os
import shutil

from features import feature
from features_work import some_bytes


@feature("hook", refusing=True)
def hook_refuses(w, rng):
    name = rng.choice(["pre-commit", "commit-msg", "prepare-commit-msg", "pre-push"])
    w.hook(name, rng.choice(["echo no >&2; exit 1", "exit 1", "echo nothing to commit >&2; exit 1", "echo gpg >&2; exit 2"]))


@feature("hook")
def hook_rewrites(w, rng):
    w.hook("pre-commit", "printf formatted >src/a.txt; git add src/a.txt")
    w.changed_by_hooks.add(b"src/a.txt")


@feature("hook")
def hook_adds(w, rng):
    w.hook("pre-commit", "echo made >made-by-hook.txt; git add made-by-hook.txt")


@feature("hook")
def hook_litters(w, rng):
    name = rng.choice(["pre-commit", "post-commit", "pre-push", "post-checkout"])
    w.hook(name, "echo litter >litter.txt")
    w.refusing = True


@feature("hook")
def hook_edits_after(w, rng):
    w.hook("post-commit", "echo later >>kept.txt")
    w.changed_by_hooks |= {b"kept.txt", b"src/a.txt"}  # the one may be a link to the other
    w.refusing = True


@feature("hook")
def hook_commits_again(w, rng):
    w.hook("post-commit", "[ -e ../once ] && exit 0; echo >../once; git commit --quiet --allow-empty --message again")


@feature("hook")
def hook_edits_the_message(w, rng):
    w.hook("commit-msg", 'echo "Ticket: 7" >>"$1"')


@feature("hook")
def hook_switches_away(w, rng):
    w.hook("post-commit", "git switch --quiet --detach")
    w.refusing = True


@feature("hook")
def hook_in_the_background(w, rng):
    w.hook("post-commit", "(sleep 0.05; echo late >late-litter.txt) >/dev/null 2>&1 &")
    w.refusing = True


@feature("hook")
def hook_stages_everything(w, rng):
    w.hook("pre-commit", "git add --all")


@feature("hook", refusing=True)
def references_are_frozen(w, rng):
    w.hook("reference-transaction", "exit 1")


@feature("hook")
def hooks_elsewhere(w, rng):
    (w.project / "githooks").mkdir()
    (w.project / "githooks" / "pre-commit").write_text("#!/bin/sh\nexit 0\n")
    (w.project / "githooks" / "pre-commit").chmod(0o755)
    w.configure("core.hooksPath", str(w.project / "githooks"))


@feature("signing", refusing=True)
def signing_fails(w, rng):
    w.configure("commit.gpgSign", "true")
    w.configure("gpg.program", rng.choice(["/bin/false", "/nonexistent"]))


@feature("signing")
def signing_works(w, rng):
    program = w.home / "bin" / "signer"
    program.write_text("#!/bin/sh\ncat >/dev/null\necho '[GNUPG:] SIG_CREATED D 1 8 00 0 0' >&2\n"
                       "echo '-----BEGIN PGP SIGNATURE-----'; echo made-up; echo '-----END PGP SIGNATURE-----'\n")
    program.chmod(0o755)
    w.configure("commit.gpgSign", "true")
    w.configure("gpg.program", str(program))


@feature("signing", refusing=True)
def nobody_is_known(w, rng):
    for name in ("GIT_AUTHOR_NAME", "GIT_AUTHOR_EMAIL", "GIT_COMMITTER_NAME", "GIT_COMMITTER_EMAIL"):
        w.extra_environment[name] = ""
    w.configure("user.useConfigOnly", "true")


# Remotes.

@feature("remote", refusing=True)
def remote_rejects(w, rng):
    w.hook(rng.choice(["pre-receive", "update"]), "echo not here >&2; exit 1", w.hub)


@feature("remote", refusing=True)
def remote_rejects_the_recovery_branch(w, rng):
    w.hook("update", 'case "$1" in refs/heads/cairnfield/*) exit 1;; esac', w.hub)


@feature("remote", refusing=True)
def remote_forgets(w, rng):
    w.hook("post-receive", "while read old new ref; do git update-ref -d $ref; done", w.hub)


@feature("remote", refusing=True)
def remote_lies(w, rng):
    w.hook("post-receive", "while read old new ref; do git update-ref $ref refs/heads/main; done", w.hub)


@feature("remote", refusing=True)
def remote_hangs(w, rng):
    w.hook(rng.choice(["pre-receive", "post-receive"]), "exec sleep 30", w.hub)
    w.limits.append(("git push", 400))


@feature("remote", refusing=True)
def remote_is_gone(w, rng):
    w.hub.rename(w.base / "elsewhere.git")
    w.hubs = [w.base / "elsewhere.git"]


@feature("remote", refusing=True)
def remote_is_empty(w, rng):
    shutil.rmtree(w.hub)
    w.git(w.base, "init", "--quiet", "--template=", f"--object-format={w.object_format}", "--bare", str(w.hub))


@feature("remote", refusing=True)
def no_remote(w, rng):
    w.git(w.project, "remote", "remove", "origin")


@feature("remote")
def another_name(w, rng):
    w.git(w.project, "remote", "rename", "origin", rng.choice(["upstream", "my.remote", "a-b"]))


@feature("remote", refusing=True)
def separate_push_address(w, rng):
    mirror = w.base / "mirror.git"
    shutil.copytree(w.hub, mirror)
    w.git(w.project, "remote", "set-url", "--push", "origin", str(mirror))
    w.hubs.append(mirror)


@feature("remote")
def two_push_addresses(w, rng):
    mirror = w.base / "mirror.git"
    shutil.copytree(w.hub, mirror)
    for url in (w.hub, mirror):
        w.git(w.project, "remote", "set-url", "--push", "--add", "origin", str(url))
    w.hubs.append(mirror)


@feature("remote")
def several_remotes(w, rng):
    mirror = w.base / "mirror.git"
    shutil.copytree(w.hub, mirror)
    w.git(w.project, "remote", "add", rng.choice(["aaa", "zzz"]), str(mirror))
    w.hubs.append(mirror)


@feature("remote")
def instead_of(w, rng):
    w.configure(f"url.{w.base}/.insteadOf", "here:")
    w.git(w.project, "remote", "set-url", "origin", "here:hub.git")


@feature("remote")
def remote_is_itself(w, rng):
    w.git(w.project, "remote", "set-url", "origin", str(w.project))
    w.hubs = [w.project / ".git"]
    w.refusing = True  # its main worktree has a branch checked out, and so on


@feature("remote")
def remote_borrows(w, rng):
    """The remote has the project's objects only by reference to the project."""
    shutil.rmtree(w.hub)
    w.git(w.base, "clone", "--quiet", "--template=", "--bare", "--shared", str(w.project), str(w.hub))


@feature("remote")
def relative_address(w, rng):
    w.git(w.project, "remote", "set-url", "origin", "../hub.git")
    w.refusing = True  # relative to the worktree, which may lie elsewhere


@feature("remote")
def file_address(w, rng):
    w.git(w.project, "remote", "set-url", "origin", f"file://{w.hub}")


@feature("remote", refusing=True)
def same_ending_there(w, rng):
    """A branch whose name ends like the recovery branch, made when the name is known."""
    w.same_ending = rng.choice(["main", "HEAD"])


@feature("remote", refusing=True)
def name_in_the_way_there(w, rng):
    w.git(w.hub, "update-ref", "refs/heads/cairnfield", "refs/heads/main")


@feature("remote", refusing=True)
def remote_with_worktree(w, rng):
    w.git(w.hub, "config", "core.bare", "false")
    w.git(w.hub, "config", "receive.denyCurrentBranch", "refuse")


@feature("remote")
def remote_is_strict(w, rng):
    for key in ("receive.denyNonFastForwards", "receive.denyDeletes", "receive.fsckObjects", "transfer.fsckObjects"):
        w.git(w.hub, "config", key, "true")


@feature("remote")
def remote_hides(w, rng):
    w.git(w.hub, "config", "transfer.hideRefs", "refs/heads/cairnfield")
    w.refusing = True


@feature("remote")
def mirror_setting(w, rng):
    w.configure("remote.origin.mirror", "true")
    w.refusing = True


@feature("remote")
def shallow(w, rng):
    os.rename(w.project, w.base / "whole")
    w.git(w.base, "clone", "--quiet", "--template=", "--depth=1", f"file://{w.hub}", str(w.project))
    shutil.rmtree(os.fsdecode(w.worktree), ignore_errors=True)
    w.changed_unseen.clear()
    if (w.home / "data").is_symlink():
        (w.home / "data").unlink()  # it led into what has gone
    w.git(w.project, "worktree", "add", "--quiet", "-b", "feature", os.fsdecode(w.worktree))
    w.write(b"new-in-shallow.txt", some_bytes(rng))


@feature("remote")
def borrowed_objects(w, rng):
    for name in ("pack", "info"):
        (w.base / "store" / "objects" / name).mkdir(parents=True)
    objects = w.project / ".git" / "objects"
    for entry in list(objects.iterdir()):
        if len(entry.name) == 2:
            shutil.move(str(entry), str(w.base / "store" / "objects" / entry.name))
    (objects / "info").mkdir(exist_ok=True)
    (objects / "info" / "alternates").write_text(str(w.base / "store" / "objects") + "\n")
