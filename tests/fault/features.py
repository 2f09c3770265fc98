"""The list of features that a world can have. Each is a function of the world and the random numbers of its seed; features of
one group exclude each other."""

ALL = {}


class Feature:
    def __init__(self, function, group, refusing, filtered):
        self.function = function
        self.name = function.__name__
        self.group = group
        self.refusing = refusing
        self.filtered = filtered

    def apply(self, world, rng):
        self.function(world, rng)
        world.features.append(self.name)
        world.refusing |= self.refusing
        world.filtered |= self.filtered


def feature(group=None, refusing=False, filtered=False):
    """`refusing`: a cleanup has a good reason to stop there, so that its stopping is no defect."""
    def register(function):
        assert function.__name__ not in ALL, function.__name__
        ALL[function.__name__] = Feature(function, group, refusing, filtered)
        return function
    return register


def chosen(names, rng):
    """Some of `names`, no two of one group, in the order in which they are to be applied."""
    taken, groups = [], set()
    for name in names:
        if ALL[name].group is None or ALL[name].group not in groups:
            taken.append(ALL[name])
            groups.add(ALL[name].group)
    # What makes a commit must come before what only lies about, and what moves the worktree before everything.
    order = {"place": 0, "base": 0, "submodule": 1, "commits": 2, None: 3, "operation": 4, "head": 5, "remote": 6, "hook": 7,
             "signing": 7, "lock": 8}
    return sorted(taken, key=lambda item: order.get(item.group, 3))
