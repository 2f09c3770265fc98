"""Disks that are full, and a user who may not write: for runs that need them. Mounts are seen by this process and its children
alone, and go with them."""

import ctypes
import os
import shutil

NOBODY = 65534
NEW_MOUNTS = 0x00020000
RECURSIVE_PRIVATE = 0x4000 | 0x40000
DETACH = 2
state = {"may_mount": None}


def may_mount():
    """Whether this process could get a set of mounts of its own."""
    if state["may_mount"] is None:
        library = ctypes.CDLL(None, use_errno=True)
        state["may_mount"] = os.geteuid() == 0 and library.unshare(NEW_MOUNTS) == 0 and \
            library.mount(None, b"/", None, RECURSIVE_PRIVATE, None) == 0
    return state["may_mount"]


def mount(world, place, size):
    library = ctypes.CDLL(None, use_errno=True)
    if library.mount(b"tmpfs", os.fsencode(place), b"tmpfs", 0, b"mode=0755,size=%d" % size) != 0:
        raise OSError(ctypes.get_errno(), "mount", str(place))
    world.mounted.append(place)


def unmount(world):
    library = ctypes.CDLL(None, use_errno=True)
    while world.mounted:
        library.umount2(os.fsencode(world.mounted.pop()), DETACH)


def mount_over(world, place, spare):
    """What lies at the place, on a disk that has `spare` bytes more than that."""
    before = place.with_name(place.name + "-before")
    os.rename(place, before)
    place.mkdir()
    used = sum(max(4096, os.lstat(os.path.join(folder, name)).st_size + 4096)
               for folder, folders, files in os.walk(before) for name in [*folders, *files])
    mount(world, place, used + spare)
    shutil.copytree(before, place, symlinks=True, dirs_exist_ok=True)
    shutil.rmtree(before)


def fill(place, free):
    """Takes all of the disk but `free` bytes, and gives a function that gives it back."""
    filler = place / "filler"
    with open(filler, "wb", buffering=0) as file:
        try:
            while True:
                file.write(b"x" * 4096)
        except OSError:
            pass
        file.truncate(max(0, file.tell() - free))
    return lambda: filler.unlink(missing_ok=True)


def hand_over(world):
    """The whole world to a user without rights, who will run the worker."""
    for folder, folders, files in os.walk(os.fsencode(world.base)):
        for name in [b".", *folders, *files]:
            os.lchown(os.path.join(folder, name), NOBODY, NOBODY)
    world.as_nobody = True
