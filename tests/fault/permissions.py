"""Which references a cleanup may change: its own recovery branch, and what somebody led git to in between, which may gain
commits and nothing else."""

import os

import neighbours

CHANGING = ("before git switch", "before git add", "before git commit")
SWITCHING = ("git switch", "git show-ref", "git symbolic-ref")


def allows(run, section, key, old, new):
    kind, place = section
    world = run.world
    if is_of_another_cleanup(world, place, key):
        return True
    if key is None:
        return False
    is_project = os.path.realpath(place).startswith(os.path.realpath(os.fsencode(world.project)))
    if kind != "references":
        return is_project and kind in ("checkout", "files") and was_led_there(run, (kind, key))
    repository = world.project if is_project else os.fsdecode(place)
    recovery = (run.review or {}).get("branch") or "?"
    if key == f"refs/heads/{recovery}":
        return old is None or is_project and neighbours.is_forward(world, repository, old, new)
    if key == f"refs/remotes/{world.remote}/{recovery}":
        return is_project
    if key.startswith("refs/tags/") and not is_project:
        return old is None and world.setting("push.followTags") == "true"
    if is_project and (was_led_there(run, key) or lied_about_the_branch(run) and key == run.branch):
        return neighbours.is_forward(world, repository, old, new)
    return False


def is_of_another_cleanup(world, place, key):
    """Somebody cleans another worktree of the repository at the same time."""
    names = ("refs/heads/cairnfield/", f"refs/remotes/{world.remote}/cairnfield/")
    return bool(world.companions) and (place in world.companions or isinstance(key, str) and key.startswith(names))


def was_led_there(run, key):
    """A deed after the last question about where HEAD is made git go on there, and git was told to change something since."""
    since = run.may_move.get(key)
    asked = run.reached("before git show-ref")
    changes = [moment for moment, name in run.points() if name.startswith(CHANGING)]
    return since is not None and asked is not None and since >= asked and bool(changes) and changes[-1] >= since


def lied_about_the_branch(run):
    return any(line.removeprefix("before ").startswith(SWITCHING) for _, line in run.faulty) and run.liar
