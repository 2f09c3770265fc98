"""What a cleanup has to leave as it is: the main checkout, other worktrees and clones with all their files, and every branch
and tag of every repository. Facts are kept by section, so that a section that cannot be read keeps what was last known."""

import os

from account import blob, content_of, is_executable, references, shas, walk


def look(world):
    """{(kind, place): {key: value}}; a section is None when it cannot be read."""
    facts = {}
    for repository in repositories(world):
        facts["references", os.fsencode(repository)] = references(world, repository)
    places = checkouts(world)
    for place in places:
        facts["files", place] = files_of(world, place, set(places) - {place})
        facts["checkout", place] = standing_of(world, place)
    return facts


def repositories(world):
    """The project first, then the remotes, then clones. A remote that is away for a while is judged once it is back."""
    found = [world.project, *world.hubs]
    for entry in sorted(os.scandir(world.base), key=lambda entry: entry.name):
        if entry.name == "away.git":
            continue
        has = [entry.is_dir(follow_symlinks=False) and os.path.isdir(os.path.join(entry.path, name)) for name in (".git", "refs")]
        if any(has) and entry.name != "project" and os.fsencode(entry.path) != world.worktree:
            found.append(entry.path)
    return list(dict.fromkeys(os.fspath(place) for place in found))


def checkouts(world):
    """Every other place where files of a repository are checked out, but for those inside the worktree."""
    found = [os.fsencode(world.project)]
    found += [os.fsencode(place) for place in repositories(world)[1:] if os.path.isdir(os.path.join(place, ".git"))]
    registered = os.fsencode(world.project / ".git" / "worktrees")
    for name in sorted(os.listdir(registered)) if os.path.isdir(registered) else []:
        admin = os.path.join(registered, name)
        text = content_of(os.path.join(admin, b"gitdir"))
        if text and os.path.realpath(admin) != os.path.realpath(world.admin):
            found.append(os.path.dirname(text[1].rstrip(b"\n")))
    mine = os.path.realpath(world.worktree)
    return [place for place in dict.fromkeys(found)
            if not (os.path.realpath(place) + b"/").startswith(mine + b"/") and os.path.isdir(place)]


def files_of(world, place, others):
    without = {place + b"/.git", world.worktree, *others}
    facts = {}
    for path, full in walk(place, without):
        found = content_of(full)
        if found and not os.path.basename(full).startswith(b"filler"):
            facts[path] = (found[0], blob(found[1], world.algorithm), is_executable(full))
    return facts


def standing_of(world, place):
    """Where HEAD is, and what the index holds."""
    head = world.git(place, "rev-parse", "--verify", "--quiet", "HEAD", check=False)
    index = world.git(place, "ls-files", "-z", "--stage", check=False)
    if index is None:
        return None
    name = world.git(place, "symbolic-ref", "--quiet", "HEAD", check=False)
    return {"HEAD": head, "branch": name, "index": blob(index, world.algorithm)}


def follow(expected, before, after):
    """Takes over into `expected` what somebody changed between two looks; what they only hid stays as it was."""
    for section, found in after.items():
        if section not in before or expected.get(section) is None:
            expected.setdefault(section, found)
            if expected[section] is None:
                expected[section] = found
            continue
        if found is None or before[section] is None:
            continue
        for key in found.keys() | before[section].keys():
            if found.get(key) != before[section].get(key):
                put(expected[section], key, found.get(key))


def put(facts, key, value):
    if value is None:
        facts.pop(key, None)
    else:
        facts[key] = value


def touched(before, after):
    """{(section, key)} that differ between two looks."""
    changed = set()
    for section in before.keys() | after.keys():
        old, new = before.get(section), after.get(section)
        if old is None or new is None:
            changed |= {(section, key) for key in (old or new or {})} if old != new else set()
        else:
            changed |= {(section, key) for key in old.keys() | new.keys() if old.get(key) != new.get(key)}
    return changed


def differences(expected, found):
    """(section, key, what was, what is) of everything that is not as expected."""
    for section, facts in expected.items():
        present = found.get(section)
        if facts is None:
            continue
        if present is None:
            yield section, None, "there", "gone or not readable"
            continue
        for key in sorted(facts.keys() | present.keys(), key=repr):
            if facts.get(key) != present.get(key):
                yield section, key, facts.get(key), present.get(key)


def is_forward(world, repository, old, new):
    """Whether a reference that stood at `old` only gained commits by going to `new`."""
    if old is None or new is None:
        return False
    return old == new or old in shas(world.git(repository, "rev-list", new, "--", check=False))
