"""What the rules let go, as docs/guarantees.md tells it, and what a person must have read of it beforehand. Nothing else may be
lost."""

import os
import re

EXACT = {b".env", b".npmrc", b".pypirc", b".netrc", b"credentials", b"credentials.json", b"id_rsa", b"id_ed25519", b"id_ecdsa",
         b".masterkey", b"secrets.json", b"googleservice-info.plist", b"google-services.json"}
BEGINNINGS = (b".env", b"service-account", b"serviceaccount", b"id_rsa", b"id_ed25519")
ENDINGS = {b"pem", b"key", b"p12", b"pfx", b"keystore", b"jks", b"mobileprovision", b"provisionprofile", b"cer", b"der"}
REBUILDABLE = {name.encode() for name in (
    "node_modules .next .nuxt .turbo .parcel-cache .svelte-kit dist build out target .output .cache .gradle DerivedData .build "
    "Pods __pycache__ .pytest_cache .mypy_cache .ruff_cache .venv venv coverage .nyc_output .angular .vite .eslintcache").split()}
NAMES = {"ignored-rebuildable", "ignored-unknown", "ignored-later", "secret-nested", "secret-unselected", "secret-link",
         "staged-version", "head-reflog", "worktree-references", "tracking-reference", "hooks-change",
         "filters", "same-second", "last-moment", "lying-git"}


def looks_sensitive(name):
    name = name.lower()
    ending = re.search(rb"[^.].*\.([^.]+)$|^.+\.([^.]+)$", name)
    return name in EXACT or name.startswith(BEGINNINGS) or name.endswith(b".env") or b"credential" in name or \
        b"secret" in name or (b"signing" in name and (b"config" in name or b"key" in name)) or \
        bool(ending) and name[name.rfind(b".") + 1:] in ENDINGS and name.rfind(b".") > 0


def is_within_build_output(path):
    return any(part in REBUILDABLE or part.lower() in REBUILDABLE for part in path.split(b"/"))


def looks_sensitive_below(path):
    """By its own name or by that of a folder around it; nothing within build output does."""
    return b"/" in path and not is_within_build_output(path) and any(looks_sensitive(part) for part in path.split(b"/"))


def repaired(path):
    """As the screens show it."""
    return path.decode(errors="replace")


class Told:
    """What the sheets of a cleanup said of ignored files."""

    def __init__(self, screens):
        self.any = bool(screens)
        self.kinds = {}         # the top of a path -> class
        self.going = []         # lines about what looks sensitive below the top and disappears
        self.is_counted = False  # there are more such than are named
        for screen in screens:
            said = screen.event
            self.going += said["going"]["lines"]
            self.is_counted |= len(said["going"]["lines"]) >= 200
            for entry in said["ignored"]:
                kind, shown = entry["class"], entry["line"].rsplit(" · ", 2)[0]
                lines = said.get({"sensitive": "sensitive", "rebuildable": "rebuildable"}.get(kind))
                is_in_section = lines is None or any(line.removeprefix("• ").startswith(shown + " · ") for line in lines)
                if is_in_section and entry["line"].lower().endswith(kind):
                    self.kinds[entry["name"]] = kind

    def disappears(self, path):
        """Whether it was named, or was one of those that are only counted."""
        return self.is_counted or any(line.startswith(f"• {repaired(path)} · ") for line in self.going)

    def of(self, path):
        """The class under which the top of this path was listed; None when it was not."""
        return self.kinds.get(repaired(path.split(b"/")[0]))


def name_of_ignored(item, told, is_in_reviewed_folder, options):
    """The name under which an ignored file may have gone that is nowhere; None when it must not. `told` is what screens said
    since a file of this path was there. A folder that git listed as ignored was reviewed with all that comes to it later."""
    is_below = looks_sensitive_below(item.path)
    if not told.any:
        is_expected = is_within_build_output(item.path) or is_in_reviewed_folder and not is_below
        return "ignored-later" if is_expected else None
    shown = told.of(item.path)
    if is_below:
        is_left = options["nested"] == "no" or item.kind == "link" or item.size > int(options.get("largest", 1_000_000))
        return "secret-nested" if is_left and (told.disappears(item.path) or item.kind == "link") else None
    if shown == "sensitive":
        if item.kind == "link":
            return "secret-link"
        return "secret-unselected" if options["sensitive"] == "no" else None
    return {"rebuildable": "ignored-rebuildable", "unknown": "ignored-unknown"}.get(shown)
