"""What the rules let go, as docs/guarantees.md tells it, and what a person must have read of it beforehand. Nothing else may be
lost."""

import os
import re

EXACT = {b".env", b".npmrc", b".pypirc", b".netrc", b"credentials", b"credentials.json", b"id_rsa", b"id_ed25519", b"id_ecdsa",
         b".masterkey", b"secrets.json", b"googleservice-info.plist", b"google-services.json"}
BEGINNINGS = (b".env", b"service-account", b"serviceaccount", b"id_rsa", b"id_ed25519")
ENDINGS = {b"pem", b"key", b"p12", b"pfx", b"keystore", b"jks", b"mobileprovision", b"provisionprofile", b"cer", b"der"}
NAMES = {"ignored-rebuildable", "ignored-unknown", "ignored-later", "secret-nested", "secret-directory", "secret-unselected",
         "secret-link", "staged-version", "head-reflog", "worktree-references", "tracking-reference", "hooks-change",
         "filters", "same-second", "last-moment", "lying-git"}


def looks_sensitive(name):
    name = name.lower()
    ending = re.search(rb"[^.].*\.([^.]+)$|^.+\.([^.]+)$", name)
    return name in EXACT or name.startswith(BEGINNINGS) or name.endswith(b".env") or b"credential" in name or \
        b"secret" in name or (b"signing" in name and (b"config" in name or b"key" in name)) or \
        bool(ending) and name[name.rfind(b".") + 1:] in ENDINGS and name.rfind(b".") > 0


class Told:
    """What the screens of a cleanup said of ignored files."""

    def __init__(self, screens):
        self.any = bool(screens)
        self.kinds = {}     # the top of a path, repaired as the screens repair it -> class
        for screen in screens:
            for entry in screen.event["ignored"]:
                kind = entry["class"].lower()
                lines = screen.event.get({"sensitive": "sensitive", "rebuildable": "rebuildable"}.get(kind), None)
                if lines is None or any(line.removeprefix("• ").startswith(entry["shown"] + " · ") for line in lines):
                    self.kinds[entry["name"]] = kind

    def of(self, path):
        """The class under which the top of this path was listed; None when it was not."""
        return self.kinds.get(path.split(b"/")[0].decode(errors="replace"))


def name_of_ignored(item, told, options):
    """The name under which an ignored file may have gone that is nowhere; None when it must not. `told` is what screens said
    since it was there."""
    shown = told.of(item.path)
    is_deep = b"/" in item.path
    is_secret = looks_sensitive(os.path.basename(item.path))
    if shown is None:
        return None if told.any or not is_deep and is_secret else "ignored-later"
    if shown == "sensitive":
        if is_deep:
            return "secret-directory"
        if item.kind == "link":
            return "secret-link"
        return "secret-unselected" if options["sensitive"] == "no" else None
    if is_secret:
        return "secret-nested"
    return "ignored-rebuildable" if shown == "rebuildable" else "ignored-unknown"
