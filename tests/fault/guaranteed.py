"""What docs/guarantees.md says goes with a worktree: each entry of it in a run that shows that it goes, that nothing else does,
and what the person was told."""

import json
import re
from pathlib import Path

import attempt as attempts
import deeds
import ledger
import let_go
import systematic

PAGE = Path(__file__).resolve().parents[2] / "docs" / "guarantees.md"
ENTRY = re.compile(r"^\| `([a-z-]+)` \|", re.MULTILINE)


def shown_as(name, kind):
    """The sheet lists it as of this class, in the section of that class where there is one."""
    return lambda run: let_go.Told([ledger.Screen((1, 0), run.screen)]).kinds.get(name) == kind


def listed(name, path):
    """The sheet has it in this list."""
    return lambda run: path in run.screen[name]


def says(text):
    return lambda run: text in everything_said(run)


def told_nothing(*words):
    """No screen has any of these words. What the page says of it, "nothing", would be wrong otherwise."""
    return lambda run: not any(word in everything_said(run) for word in words)


def everything_said(run):
    """Before it began and after it ended, as one text."""
    return json.dumps([run.screen, run.receipt], ensure_ascii=False)


class Going:
    """`told`: whether the person could know, or could not, judged by what the screens said."""

    def __init__(self, features, told, options=None, stops=(), faults=None):
        self.features = features
        self.told = told
        self.options = options or {}
        self.stops = stops
        self.faults = faults


def add_build_output(world, run):
    """Other ignored files that appear are refused by the last look."""
    deeds.write(world, b"node_modules/late.js", b"late\n")


def at(step, *names):
    return [attempts.Stop(step, deed=deeds.ALL[name]) for name in names]


GOING = {
    "ignored-rebuildable": Going(["edit", "build_output"], shown_as("node_modules", "rebuildable")),
    "ignored-unknown": Going(["edit", "unknown_ignored"], shown_as("scratch", "unknown")),
    "ignored-later": Going(["edit"], told_nothing("late.js"), stops=[attempts.Stop("after git push", deed=add_build_output)]),
    "secret-nested": Going(["edit", "secret_nested"], says("• src/deep/inner.key · "), {"nested": "no"}),
    "secret-unselected": Going(["edit", "secret"], shown_as(".env", "sensitive"), {"sensitive": "no"}),
    "secret-link": Going(["edit_many", "secret_link_inside"], shown_as("link.key", "sensitive")),
    "staged-version": Going(["half_staged"], listed("changed", "src/deep/c.txt")),
    "head-reflog": Going(["reset_away", "edit"], told_nothing("away.txt", "Add away")),
    "worktree-references": Going(["own_references", "edit"], told_nothing("refs/worktree", "mine")),
    "tracking-reference": Going(["detached_at_a_stale_copy"], says("Every commit here already exists on the remote.")),
    "hooks-change": Going(["edit", "hook_rewrites"], listed("changed", "src/a.txt")),
    "filters": Going(["edit", "clean_filter_that_loses"], listed("untracked", "words.short")),
    "same-second": Going(["edit", "same_second"], told_nothing("tool.sh")),
    "lying-git": Going(["detached_with_commits"], says("Every commit here already exists on the remote."),
                       faults=dict.fromkeys(["review git branch -r --contains", "git branch -r --contains"], "rubbish")),
    "last-moment": Going(["detached_with_commits_pushed"], told_nothing("On no branch"),
                         stops=at("before git worktree remove", "detach_and_commit")),
}


def named_in_the_page():
    return ENTRY.findall(PAGE.read_text())


def page_and_checker_agree():
    """What either names and the other does not."""
    return sorted(set(named_in_the_page()) ^ let_go.NAMES)


def entries(workshop):
    for name, going in GOING.items():
        world = systematic.standard(workshop, "going-" + name, going.features, "no")
        world.options.update(going.options)
        result = systematic.run(workshop, world, "going-" + name, "plain", going.stops, going.faults)
        systematic.expect_success(result)
        if result.fates[name] == 0:
            result.stuck.append(f"nothing went by the name of {name}: {dict(result.fates)}")
        others = set(result.fates) & let_go.NAMES - {name} - going_along(name)
        if others:
            result.stuck.append(f"more went than {name}: {others}")
        if not going.told(result.runs[0]):
            result.stuck.append("the person was not told")
        yield result


def going_along(name):
    """An entry whose world cannot be made without another one."""
    return {"secret-nested": {"ignored-rebuildable"}}.get(name, set())
