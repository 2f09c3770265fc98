"""What a person's files can look like: changed, staged, untracked, ignored, oddly named."""

import os
from pathlib import Path

from features import feature

ODD_NAMES = [b"two words.txt", b" leading and trailing ", b"new\nline.txt", b'quote".txt', b"it's.txt", b"-leading-dash",
             b"--force", b":(top)magic.txt", b":!not.txt", b"star*.txt", b"q?.txt", b"[abc].txt", b"back\\slash.txt",
             b"tab\there.txt", b"caf\xe9.txt", b"\xff\xfe", "grün.txt".encode(), "e\u0301.txt".encode(), b"#comment",
             b"$(touch gone)", b"`id`", b"a;b", b"dir with blank/in it.txt", b"caf\xe9/deep.txt", b"..dots", b"HEAD", b"refs",
             b"x" * 200, b"\x01control", b"right \xe2\x80\xae left.txt"]


def some_bytes(rng, most=400):
    return rng.randbytes(rng.randrange(1, most)) + b"\n"


@feature()
def edit(w, rng):
    w.write(b"src/a.txt", b"edited " + some_bytes(rng))


@feature()
def edit_many(w, rng):
    for name in (b"src/b.txt", b"src/deep/c.txt", b"README.md"):
        w.write(name, some_bytes(rng))


@feature()
def stage(w, rng):
    w.write(b"src/b.txt", b"staged " + some_bytes(rng))
    w.here("add", "src/b.txt")


@feature()
def stage_new(w, rng):
    w.write(b"new/staged.txt", some_bytes(rng))
    w.here("add", "new/staged.txt")


@feature()
def half_staged(w, rng):
    w.write(b"src/deep/c.txt", b"staged version " + some_bytes(rng))
    w.here("add", "src/deep/c.txt")
    w.write(b"src/deep/c.txt", b"later version " + some_bytes(rng))


@feature()
def staged_then_deleted(w, rng):
    w.write(b"short-lived.txt", some_bytes(rng))
    w.here("add", "short-lived.txt")
    os.unlink(w.path(b"short-lived.txt"))


@feature()
def staged_then_back(w, rng):
    w.write(b"kept.txt", b"only staged " + some_bytes(rng))
    w.here("add", "kept.txt")
    w.write(b"kept.txt", b"kept as committed\n")


@feature()
def deleted(w, rng):
    os.unlink(w.path(b"README.md"))


@feature()
def removed_staged(w, rng):
    """`git add` does not know a path whose deletion is staged already."""
    w.here("rm", "--quiet", "README.md")


@feature()
def removed_but_kept(w, rng):
    w.here("rm", "--quiet", "--cached", "src/b.txt")


@feature()
def renamed_staged(w, rng):
    w.here("mv", "kept.txt", "moved.txt")


@feature()
def renamed_and_edited(w, rng):
    w.here("mv", "src/a.txt", "src/renamed.txt")
    w.write(b"src/renamed.txt", b"a as committed\nand more\n")


@feature()
def renamed_unstaged(w, rng):
    os.rename(w.path(b"src/b.txt"), w.path(b"src/b2.txt"))


@feature()
def file_becomes_folder(w, rng):
    os.unlink(w.path(b"kept.txt"))
    w.write(b"kept.txt/inside.txt", some_bytes(rng))


@feature()
def folder_becomes_file(w, rng):
    os.unlink(w.path(b"src/deep/c.txt"))
    os.rmdir(w.path(b"src/deep"))
    w.write(b"src/deep", some_bytes(rng))


@feature()
def file_becomes_link(w, rng):
    os.unlink(w.path(b"kept.txt"))
    os.symlink(b"src/a.txt", w.path(b"kept.txt"))


@feature()
def same_second(w, rng):
    """Changed twice within a second, to the same size and with its time set back, before git wrote its index anew: no more than
    the second tells git."""
    path = w.path(b"tool.sh")
    while True:
        w.write(b"tool.sh", b"#!/bin/sh\n")
        os.utime(path, (1_700_000_000, 1_700_000_000))
        w.here("update-index", "--refresh", check=False)
        before = os.stat(path).st_ctime_ns // 1_000_000_000
        w.write(b"tool.sh", b"#!/bin/zs\n")
        os.utime(path, (1_700_000_000, 1_700_000_000))
        if os.stat(path).st_ctime_ns // 1_000_000_000 == before:
            break
    w.here("update-index", "--force-write-index")
    w.changed_unseen.add(b"tool.sh")


@feature()
def untracked(w, rng):
    w.write(b"new.txt", some_bytes(rng))


@feature()
def untracked_nested(w, rng):
    for name in (b"lib/one.txt", b"lib/sub/two.txt", b"lib/sub/deeper/three.txt"):
        w.write(name, some_bytes(rng))


@feature()
def untracked_empty(w, rng):
    w.write(b"empty.txt", b"")
    os.makedirs(w.path(b"empty-folder/in"))


@feature()
def untracked_secret(w, rng):
    w.write(b"secrets.json", some_bytes(rng))


@feature()
def untracked_ignore_file(w, rng):
    w.write(b"lib/.gitignore", b"*\n!.gitignore\n")
    w.write(b"lib/hidden.bin", some_bytes(rng))


@feature()
def large_files(w, rng):
    w.write(b"large.bin", rng.randbytes(300_000))
    w.write(b"src/a.txt", rng.randbytes(100_000))


@feature()
def many_files(w, rng):
    for number in range(120):
        w.write(b"many/f%03d.txt" % number, b"%d" % number)


@feature()
def odd_names(w, rng):
    for name in rng.sample(ODD_NAMES, 6):
        w.write(name, some_bytes(rng))


@feature("commits")
def odd_names_tracked(w, rng):
    names = rng.sample(ODD_NAMES, 5)
    for name in names:
        w.write(name, some_bytes(rng))
    w.here("add", "--", ".")
    w.commit("Odd names")
    for name in names[:3]:
        w.write(name, some_bytes(rng))


@feature()
def odd_name_of_a_rename(w, rng):
    w.git(w.worktree, "mv", "--", "src/a.txt", b"caf\xe9 -> new.txt")


@feature()
def executable_bit(w, rng):
    os.chmod(w.path(b"tool.sh"), 0o755)


@feature()
def links(w, rng):
    os.symlink(b"src/a.txt", w.path(b"link"))
    os.symlink(b"nowhere", w.path(b"dangling"))
    os.symlink(b"../project", w.path(b"link-out"))
    os.symlink(b"src", w.path(b"link-to-folder"))


@feature()
def hard_links(w, rng):
    w.write(b"one.txt", some_bytes(rng))
    os.link(w.path(b"one.txt"), w.path(b"two.txt"))
    os.link(w.path(b"src/b.txt"), os.path.join(os.fsencode(w.base), b"outside"))


@feature()
def intent_to_add(w, rng):
    w.write(b"intended.txt", some_bytes(rng))
    w.here("add", "--intent-to-add", "intended.txt")


@feature()
def special_file(w, rng):
    os.mkfifo(w.path(b"pipe"))


# Ignored files.

@feature()
def secret(w, rng):
    w.write(b".env", b"TOKEN=" + some_bytes(rng))


@feature()
def secrets_of_all_kinds(w, rng):
    for name in (b".env.local", b"prod.env", b"server.key"):
        w.write(name, some_bytes(rng))


@feature()
def secret_by_exclude(w, rng):
    (w.project / ".git" / "info").mkdir(exist_ok=True)
    (w.project / ".git" / "info" / "exclude").write_bytes(b"*.pem\ncredentials*\n")
    w.write(b"private.pem", some_bytes(rng))
    w.write(b"credentials", some_bytes(rng))


@feature()
def secret_too_large(w, rng):
    w.write(b"huge.key", rng.randbytes(20_000))
    w.options["largest"] = "10000"
    w.refusing = True


@feature()
def secret_link_inside(w, rng):
    os.symlink(b"src/a.txt", w.path(b"link.key"))


@feature()
def secret_link_outside(w, rng):
    os.symlink(b"../project/kept.txt", w.path(b"out.key"))


@feature()
def secret_odd_name(w, rng):
    w.write(rng.choice([b"caf\xe9.key", b"new\nline.key", b"-.key", b" blank .key", b"*.key"]), some_bytes(rng))


@feature()
def secret_nested(w, rng):
    w.write(b"src/deep/inner.key", some_bytes(rng))
    w.write(b"node_modules/pack/.env", some_bytes(rng))


@feature()
def secret_directory(w, rng):
    w.write(b".env.d/one", some_bytes(rng))
    w.write(b".env.d/deep/two", some_bytes(rng))


@feature()
def secret_read_only(w, rng):
    w.write(b"locked.key", some_bytes(rng), 0o400)


@feature()
def build_output(w, rng):
    w.write(b"node_modules/pack/index.js", some_bytes(rng))
    w.write(b"build/a.o", rng.randbytes(50_000))


@feature()
def unknown_ignored(w, rng):
    w.write(b"scratch", rng.randbytes(200_000))
    w.write(b"logs/today", some_bytes(rng))
    w.write(b"notes.local", some_bytes(rng))


@feature()
def ignored_by_others(w, rng):
    """By a file of the person's, by one in a folder, and taken back again."""
    (w.home / "ignore").write_bytes(b"*.mine\n!kept.mine\n")
    w.configure("core.excludesFile", str(w.home / "ignore"))
    w.write(b"a.mine", some_bytes(rng))
    w.write(b"kept.mine", some_bytes(rng))
    w.write(b"lib/.gitignore", b"*\n!*/\n!wanted\n")
    w.write(b"lib/sub/wanted", some_bytes(rng))
    w.write(b"lib/sub/unwanted", some_bytes(rng))


@feature()
def ignored_nested_in_tracked(w, rng):
    w.write(b"src/deep/mine.local", some_bytes(rng))


# What git stores is not what the file holds.

@feature("filter", filtered=True)
def line_ends(w, rng):
    w.configure("core.autocrlf", rng.choice(["input", "true"]))
    w.write(b"crlf.txt", b"one\r\ntwo\r\n")
    w.write(b"mixed.txt", b"one\r\ntwo\nthree\r\n")


@feature("filter", filtered=True)
def attributes(w, rng):
    w.write(b".gitattributes", b"*.utf16 working-tree-encoding=UTF-16LE\n*.id ident\n*.txt text eol=crlf\n")
    w.write(b"wide.utf16", "words\n".encode("utf-16-le"))
    w.write(b"x.id", b"$Id$\n")


@feature("filter", filtered=True)
def clean_filter(w, rng):
    w.configure("filter.shout.clean", "tr a-z A-Z")
    w.configure("filter.shout.smudge", "tr A-Z a-z")
    w.write(b".gitattributes", b"*.quiet filter=shout\n")
    w.write(b"words.quiet", b"soft words\n")


@feature("filter", filtered=True)
def clean_filter_that_loses(w, rng):
    w.configure("filter.short.clean", "head --bytes=4")
    w.write(b".gitattributes", b"*.short filter=short\n")
    w.write(b"words.short", b"soft words\n")


@feature("filter", refusing=True)
def failing_filter(w, rng):
    w.configure("filter.broken.clean", "false")
    w.configure("filter.broken.required", "true")
    w.write(b".gitattributes", b"*.txt filter=broken\n")
    w.write(b"src/a.txt", some_bytes(rng))


@feature("filter", refusing=True)
def encoding_that_fails(w, rng):
    w.write(b".gitattributes", b"*.wide working-tree-encoding=UTF-16\n")
    w.write(b"odd.wide", b"odd number of bytes!\n")
