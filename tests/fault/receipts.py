"""Whether a receipt says the truth, and whether the stores have it."""

import json
import re

from account import blob, content_of, shas

NUL_BYTE = re.compile("\0([0-9a-f]{2})")
GIT_REFUSED = "Git refused to remove the worktree"
UNCONFIRMED = ("Cairnfield could not confirm that", "The remote branch")
PLAIN = ("outcome", "finalStage", "removalSucceeded", "preservedCommitSHA", "recoveryBranch", "date", "safety")


def bytes_of(text):
    """A path as the stores write it: U+0000 and two digits stand for a byte that is no text."""
    parts = NUL_BYTE.split(text)
    encoded = [part.encode() if number % 2 == 0 else bytes([int(part, 16)]) for number, part in enumerate(parts)]
    return b"".join(encoded)


def stored(world, name):
    """The content of a store; None when it cannot be read."""
    file = world.support / name
    if not file.exists():
        return []
    try:
        return json.loads(file.read_bytes())
    except ValueError:
        return None


def vault_index(world):
    entries = stored(world, "recovery-vault.json") or []
    return [{key: bytes_of(value) if key.endswith("Path") else value for key, value in entry.items()}
            for entry in entries if isinstance(entry, dict) and "storedPath" in entry]


def stored_receipt(world, receipt):
    """What is printed has its paths repaired; the store has their bytes."""
    for other in stored(world, "cleanup-receipts.json") or []:
        if isinstance(other, dict) and other.get("id") == receipt.get("id") and other["outcome"] == receipt["outcome"]:
            return other
    return receipt


def compare_receipt(judgement):
    receipt, say = judgement.receipt, judgement.complaints.append
    outcome = receipt["outcome"]
    succeeded = outcome == "succeeded"
    if succeeded != receipt["removalSucceeded"]:
        say("outcome and removalSucceeded differ")
    if succeeded and not judgement.is_gone:
        say("succeeded, but the worktree is there")
    if succeeded and is_listed(judgement.world):
        say("succeeded, but git lists the worktree")
    if succeeded and (receipt.get("errorSummary") is not None or receipt["finalStage"] != "completed"):
        say("succeeded with an error or another stage than completed")
    if not succeeded and not receipt.get("errorSummary"):
        say("not succeeded, and nothing says why")
    if not succeeded and judgement.is_gone and not says_why_it_is_gone(judgement):
        say(f"{outcome}, but the worktree is gone: {receipt.get('errorSummary')}")
    if outcome == "partiallyCompleted" and not receipt.get("preservedCommitSHA"):
        say("partiallyCompleted without a commit")
    if outcome == "failed" and receipt.get("preservedCommitSHA"):
        say("failed with a commit in hand")
    compare_preserved(judgement, receipt, succeeded, say)
    compare_branch(judgement, receipt, say)
    for path in receipt["recoveryVaultPaths"]:
        compare_copy(judgement, bytes_of(path))


def compare_preserved(judgement, receipt, succeeded, say):
    run, around = judgement.run, judgement.around
    preserved = receipt.get("preservedCommitSHA")
    if succeeded and run.review["preserves"] and not preserved and not run.head_unknown:
        say("succeeded without the preserved commit's name")
    if succeeded and preserved and preserved not in around.remote_commits and not remote_changed_after_the_proof(judgement):
        say(f"succeeded, but no remote holds {preserved}")
    stood = judgement.ledger.branch
    on_ours = stood.startswith("refs/heads/cairnfield/") and judgement.run.number > 1
    if succeeded and on_ours and judgement.ledger.head not in around.remote_commits and not run.head_unknown:
        say(f"succeeded on {stood}, which no remote has")
    known = around.remote_commits | around.local_commits | judgement.ledger.heads | judgement.ledger.remembered
    if not judgement.is_gone:
        known |= shas(judgement.world.inside("rev-list", "--walk-reflogs", "HEAD", "--"))
    if preserved and preserved not in known and not run.head_unknown:
        say(f"{preserved} is neither on a remote nor in the repository")


def compare_branch(judgement, receipt, say):
    """The branch that the receipt names holds what was reviewed."""
    branch, head = receipt.get("recoveryBranch"), receipt.get("originalHeadSHA")
    if not branch or not head:
        return
    world = judgement.world
    keys = [("references", section[1]) for section in judgement.ledger.expected if section[0] == "references"]
    touched = max((judgement.ledger.touched.get((key, f"refs/heads/{branch}"), (0, 0)) for key in keys), default=(0, 0))
    made = judgement.run.reached("after git switch")
    if made is not None and touched >= made:
        return  # somebody else has moved it since
    held = shas(world.git(world.project, "rev-list", f"refs/heads/{branch}", "--", check=False))
    if head not in held:
        say(f"the receipt names {branch}, which does not hold {head}")


def says_why_it_is_gone(judgement):
    """The worktree went, and then the remote did not confirm once more what it had confirmed before; or git removed it and did
    not say so."""
    run, error = judgement.run, judgement.receipt.get("errorSummary") or ""
    if not run.began_removal:
        return False
    if run.removal_ended and error.startswith(UNCONFIRMED):
        return True
    removal = run.reached("before git worktree remove")
    begun = [(moment, name) for moment, name in run.points() if moment >= removal]
    late = {name for _, name in begun}
    interfered = any(step in late for _, step in run.deeds) and error.startswith(GIT_REFUSED)
    return interfered or any(line in late for _, line in run.faulty)


def remote_changed_after_the_proof(judgement):
    run, proof = judgement.run, judgement.run.last_reached("after git ls-remote --heads")
    hubs = {str(hub).encode() for hub in judgement.world.hubs}
    return any(section[0] == "references" and section[1] in hubs and proof and moment > proof
               for (section, _), moment in judgement.ledger.touched.items() if moment[0] == run.number)


def compare_copy(judgement, path):
    entry = next((entry for entry in judgement.index if entry["storedPath"] == path), None)
    found = content_of(path)
    if entry is None or found is None:
        return judgement.complaints.append(f"the receipt names {path!r}, and the vault has no such copy")
    seen = judgement.ledger.seen.get(entry["relativePath"], set())
    is_excused = entry["relativePath"] in judgement.world.changed_by_hooks or path in judgement.run.damaged
    if blob(found[1], judgement.world.algorithm) not in seen and not is_excused:
        judgement.complaints.append(f"the copy {path!r} is not what the worktree held")
    return None


def is_listed(world):
    output = world.git(world.project, "worktree", "list", "--porcelain", "-z", check=False) or b""
    return b"worktree " + world.worktree + b"\0" in output


def compare_stores(judgement):
    world, told = judgement.world, judgement.run.receipt
    receipts = stored(world, "cleanup-receipts.json")
    if receipts is None or stored(world, "recovery-vault.json") is None:
        return judgement.complaints.append("a store cannot be read")
    if not told or not judgement.run.must_store:
        return None
    kept = next((receipt for receipt in receipts if receipt["id"] == told["id"]), None)
    if kept is None:
        return judgement.complaints.append("the receipt was not stored")
    if any(kept.get(key) != told.get(key) and is_text(told.get(key)) for key in PLAIN):
        judgement.complaints.append("the stored receipt is another one")
    return None


def is_text(value):
    """What is printed is made text first, which changes what a lying git printed."""
    return not isinstance(value, str) or "\ufffd" not in value and "\0" not in value
