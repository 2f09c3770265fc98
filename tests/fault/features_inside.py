"""What can lie in a worktree without being of it: other repositories, a remote, objects, our own stores."""

import os
import shutil

from features import feature
from features_work import some_bytes


@feature(refusing=True)
def inner_repository(w, rng):
    place = rng.choice([b"inner", b"node_modules/inner", b"logs"])
    path = os.fsdecode(w.path(place))
    w.git(w.base, "init", "--quiet", "--template=", path)
    w.write(place + b"/own.txt", some_bytes(rng))
    w.git(path, "add", "own.txt")
    w.git(path, "commit", "--quiet", "--message", "Own")


@feature(refusing=True)
def inner_bare_repository(w, rng):
    w.git(w.base, "init", "--quiet", "--template=", "--bare", os.fsdecode(w.path(b"logs/bare.git")))


@feature(refusing=True)
def inner_worktree(w, rng):
    w.git(w.project, "worktree", "add", "--quiet", "-b", "inside", os.fsdecode(w.path(b"build/inside")))


@feature("remote", refusing=True)
def remote_inside(w, rng):
    """The work would go to a place that goes with the worktree."""
    inside = os.fsdecode(w.path(b"logs/hub.git"))
    os.makedirs(w.path(b"logs"))
    shutil.copytree(w.hub, inside)
    w.hubs = [w.base / "feature" / "logs" / "hub.git"] if inside.endswith("feature/logs/hub.git") else [w.hub]
    shape = rng.randrange(6)
    if shape == 0:
        w.git(w.project, "remote", "set-url", "origin", inside)
    elif shape == 1:
        os.symlink(inside, w.base / "way-in.git")
        w.git(w.project, "remote", "set-url", "origin", str(w.base / "way-in.git"))
    elif shape == 2:
        w.git(w.project, "remote", "set-url", "origin", "file://" + inside.replace("e", "%65"))
    elif shape == 3:
        w.git(w.project, "remote", "set-url", "origin", "./logs/hub.git")
    elif shape == 4:
        w.configure(f"url.{inside}.insteadOf", "inside:")
        w.git(w.project, "remote", "set-url", "origin", "inside:")
    else:
        w.git(w.project, "remote", "add", "backup", inside)
        w.hubs = [w.hub]


@feature(refusing=True)
def objects_inside(w, rng):
    """The repository borrows objects from a folder that goes with the worktree."""
    store = w.base / "feature" / "logs" / "store"
    os.makedirs(store)
    objects = w.project / ".git" / "objects"
    for entry in list(objects.iterdir()):
        if len(entry.name) == 2:
            shutil.move(str(entry), str(store / entry.name))
    (objects / "info").mkdir(exist_ok=True)
    (objects / "info" / "alternates").write_text(os.path.relpath(store, objects) + "\n")


@feature(refusing=True)
def stores_inside(w, rng):
    os.makedirs(w.path(b"logs/data"))
    os.symlink(w.path(b"logs/data"), os.fsencode(w.home / "data"))
    w.stores_at = b"logs/data/"


@feature(refusing=True)
def work_tree_elsewhere(w, rng):
    """Git is told that the files of this worktree lie in another folder."""
    (w.base / "another-place").mkdir()
    (w.base / "another-place" / "file.txt").write_bytes(some_bytes(rng))
    w.configure("extensions.worktreeConfig", "true")
    w.here("config", "--worktree", "core.worktree", str(w.base / "another-place"))


@feature()
def inner_worktree_of_another(w, rng):
    inner = w.base / "another"
    w.git(w.base, "init", "--quiet", "--template=", str(inner))
    w.git(inner, "commit", "--quiet", "--allow-empty", "--message", "Own")
    w.git(inner, "worktree", "add", "--quiet", "-b", "x", os.fsdecode(w.path(b"build/theirs")))
    w.refusing = True
