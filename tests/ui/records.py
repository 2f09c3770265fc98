"""What cleanups of earlier runs left in a home: receipts and kept files, in the form in which the program stores them."""

import json
import os
import uuid

VAULT_REASON = "Ignored file that looks sensitive; never pushed to a remote."


def stored_path(path):
    """A path of bytes as the stores write it."""
    text = ""
    for character in path.decode("utf-8", "surrogateescape"):
        code = ord(character)
        text += f"\0{code - 0xDC00:02x}" if 0xDC80 <= code <= 0xDCFF else character
    return text


def receipt(repository, outcome, date, **more):
    """With what every receipt has, and whatever else is given."""
    return {"schemaVersion": 1, "id": str(uuid.uuid4()).upper(), "date": date, "repositoryName": repository,
            "repositoryRoot": "/code/" + repository, "worktreePath": f"/code/{repository}-work",
            "safety": "dirtyTrackedChanges", "sizeBeforeBytes": 3_000_000, "recoveryVaultPaths": [],
            "removalSucceeded": outcome == "succeeded", "reclaimedBytes": 3_000_000 if outcome == "succeeded" else 0,
            "finalStage": "completed" if outcome == "succeeded" else "pushing", "outcome": outcome, **more}


def write_receipts(data, receipts):
    os.makedirs(data, mode=0o700, exist_ok=True)
    with open(os.path.join(data, "cleanup-receipts.json"), "w", encoding="utf-8") as file:
        json.dump(receipts, file)


def keep(data, files):
    """Puts {relative path as bytes: content} into the vault and gives the stored copies' paths, in the same order."""
    entries, stored = [], []
    for relative, content in files.items():
        call = str(uuid.uuid4()).upper()
        copy = os.path.join(os.fsencode(data), b"Recovery", call.encode(), relative)
        os.makedirs(os.path.dirname(copy), mode=0o700, exist_ok=True)
        with open(copy, "wb") as file:
            file.write(content)
        stored.append(copy)
        entries.append({"schemaVersion": 1, "id": str(uuid.uuid4()).upper(), "receiptID": call, "repositoryName": "atlas",
                        "originalWorktreePath": "/code/atlas-work", "relativePath": stored_path(relative),
                        "storedPath": stored_path(copy), "sizeBytes": len(content), "reason": VAULT_REASON,
                        "archivedAt": "2026-01-02T03:04:05Z"})
    entries[0]["expiresAt"] = "2035-06-07T08:09:10Z"
    with open(os.path.join(data, "recovery-vault.json"), "w", encoding="utf-8") as file:
        json.dump(entries, file)
    return stored
