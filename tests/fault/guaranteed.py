"""What docs/guarantees.md says goes with a worktree: each entry of it in a run that shows that it goes, that nothing else does,
and what the person was told."""

import re
from pathlib import Path

import attempt as attempts
import check
import deeds
import systematic

PAGE = Path(__file__).resolve().parents[2] / "docs" / "guarantees.md"
ENTRY = re.compile(r"^\| `([a-z-]+)` \|", re.MULTILINE)


def shown_as(name, kind):
    """The review listed it, as of this class."""
    return lambda run: any(entry == {"name": name, "class": kind} for entry in run.review["ignored"])


def listed_changed(name):
    return lambda run: name in run.review["changed"]


def told_nothing(run):
    return run.receipt["errorSummary"] if "errorSummary" in run.receipt else True


class Going:
    """`told`: whether the person could know, judged by what the review and the receipt said."""

    def __init__(self, features, told=told_nothing, options=None, stops=(), faults=None):
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
    "ignored-later": Going(["edit"], stops=[attempts.Stop("after git push", deed=add_build_output)]),
    "secret-nested": Going(["edit", "secret_nested"], shown_as("node_modules", "rebuildable")),
    "secret-directory": Going(["edit", "secret_directory"], shown_as(".env.d", "sensitive")),
    "secret-unselected": Going(["edit", "secret"], shown_as(".env", "sensitive"), {"sensitive": "no"}),
    "secret-link": Going(["edit_many", "secret_link_inside"], shown_as("link.key", "sensitive")),
    "staged-version": Going(["half_staged"], listed_changed("src/deep/c.txt")),
    "head-reflog": Going(["reset_away", "edit"]),
    "worktree-references": Going(["own_references", "edit"]),
    "tracking-reference": Going(["detached_at_a_stale_copy"], lambda run: run.review["safety"] == "remotelyPreserved"),
    "hooks-change": Going(["edit", "hook_rewrites"], listed_changed("src/a.txt")),
    "filters": Going(["edit", "clean_filter_that_loses"]),
    "same-second": Going(["edit", "same_second"]),
    "lying-git": Going(["detached_with_commits"], faults={11: "rubbish"}),
    "last-moment": Going(["detached_with_commits_pushed"], stops=at("before git worktree remove", "detach_and_commit")),
}


def named_in_the_page():
    return ENTRY.findall(PAGE.read_text())


def page_and_checker_agree():
    """What either names and the other does not."""
    return sorted(set(named_in_the_page()) ^ check.NAMES)


def entries(workshop):
    for name, going in GOING.items():
        world = systematic.standard(workshop, "going-" + name, going.features, "no")
        world.options.update(going.options)
        result = systematic.run(workshop, world, "going-" + name, "plain", going.stops, going.faults)
        systematic.expect_success(result)
        if result.fates[name] == 0:
            result.stuck.append(f"nothing went by the name of {name}: {dict(result.fates)}")
        others = set(result.fates) & check.NAMES - {name} - going_along(name)
        if others:
            result.stuck.append(f"more went than {name}: {others}")
        if not going.told(result.runs[0]):
            result.stuck.append("the person was not told")
        yield result


def going_along(name):
    """An entry whose world cannot be made without another one."""
    return {"secret-nested": {"ignored-rebuildable", "ignored-unknown"}, "secret-link": set()}.get(name, set())
