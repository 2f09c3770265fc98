#!/usr/bin/env python3
"""Makes a directory tree to measure on: corpora.py KIND FOLDER [--seed N] [--scale F]

  nodemods   a web project: a deep tree of many small files in packages, packages in packages, links in .bin  (150,000 files)
  worktrees  checkouts with sources and build directories, hard links among them                              (100,000 files)
  flat       one directory with nothing but files                                                             (200,000 files)
  mixed      two web projects, checkouts, a cache and flat folders beside each other                          (500,000 files)
  home       a home for looking for repositories in: projects with .git, caches, settings                     (150 projects)
  edge       what is awkward: holes, hard links, links of every kind, odd names, 1,500 levels, locked, fifo, socket

The same kind, seed and scale give the same tree. Sizes are reserved, not written: nothing is left to be flushed to the disk
while something is measured. FOLDER must not exist.
"""

import argparse
import os
import random
import socket
import sys

NAMES = "api app auth base cache client core data event file form graph http image index io json lang list log map model net page " \
        "parse path query queue render route rule server shape site sort store style task test text time tree type user view".split()


class Tree:
    def __init__(self, folder, seed):
        self.random = random.Random(seed)
        self.files = 0
        os.makedirs(folder)
        self.root = os.open(folder, os.O_RDONLY | os.O_DIRECTORY)

    def name(self, number):
        return f"{self.random.choice(NAMES)}-{number}"

    def size(self, typical):
        """Mostly small, now and then a large one."""
        return int(min(typical * 200, typical * self.random.lognormvariate(0, 1.2)))

    def file(self, folder, name, size):
        handle = os.open(name, os.O_CREAT | os.O_EXCL | os.O_WRONLY, 0o644, dir_fd=folder)
        if size:
            os.posix_fallocate(handle, 0, size)
        os.close(handle)
        self.files += 1

    def folder(self, parent, name):
        os.mkdir(name, dir_fd=parent)
        return os.open(name, os.O_RDONLY | os.O_DIRECTORY, dir_fd=parent)

    def fill(self, parent, name, content):
        folder = self.folder(parent, name)
        content(folder)
        os.close(folder)

    def sources(self, folder, depth, endings, typical=1800):
        for number in range(1 + int(self.random.expovariate(1 / 6))):
            self.file(folder, self.name(number) + self.random.choice(endings), self.size(typical))
        if depth:
            for number in range(self.random.choice((0, 1, 1, 2))):
                self.fill(folder, self.name(number), lambda inner: self.sources(inner, depth - 1, endings, typical))

    def package(self, folder, nesting):
        for name, size in (("package.json", 1200), ("LICENSE", 1070), ("README.md", 2600)):
            self.file(folder, name, self.size(size))
        self.fill(folder, "lib", lambda inner: self.sources(inner, 3, (".js", ".js.map", ".d.ts")))
        if nesting and self.random.random() < 0.15:
            def nested(inner):
                for number in range(self.random.randint(1, 4)):
                    self.fill(inner, self.name(number), lambda package: self.package(package, nesting - 1))
            self.fill(folder, "node_modules", nested)

    def web_project(self, folder, files):
        self.file(folder, "package-lock.json", 800_000)
        self.fill(folder, "src", lambda inner: self.sources(inner, 4, (".ts", ".tsx", ".css")))

        def modules(inner):
            def commands(binaries):
                for number in range(100):
                    os.symlink(f"../{self.name(number)}/lib/cli.js", f"command{number}", dir_fd=binaries)
            self.fill(inner, ".bin", commands)
            end, number = self.files + files, 0
            while self.files < end:
                self.fill(inner, self.name(number), lambda package: self.package(package, 4))
                number += 1
        self.fill(folder, "node_modules", modules)

    def checkout(self, folder, files):
        self.file(folder, ".git", 60)
        end = self.files + files // 2

        def sources(inner):
            number = 0
            while self.files < end:
                self.fill(inner, self.name(number), lambda part: self.sources(part, 4, (".cpp", ".h", ".py")))
                number += 1
        self.fill(folder, "src", sources)

        def build(inner):
            for target in range(16):
                def objects(part):
                    for number in range(files // 64):
                        self.file(part, f"unit{number}.o", self.size(40_000))
                        self.file(part, f"unit{number}.d", self.size(2_000))
                self.fill(inner, f"target{target}.dir", objects)
            os.link("target0.dir/unit0.o", "same.o", src_dir_fd=inner, dst_dir_fd=inner)
            self.files += 1
        self.fill(folder, "build", build)

    def worktrees(self, folder, files, count=8):
        for number in range(count):
            self.fill(folder, f"worktree-{number}", lambda inner: self.checkout(inner, files // count))

    def flat(self, folder, files):
        for number in range(files):
            self.file(folder, f"item-{number:07}-{self.random.getrandbits(32):08x}", self.size(1500))

    def mixed(self, folder, files):
        for number in range(2):
            self.fill(folder, f"web{number}", lambda inner: self.web_project(inner, files // 5))
        self.fill(folder, "checkouts", lambda inner: self.worktrees(inner, files * 3 // 10))
        self.fill(folder, "mail", lambda inner: self.flat(inner, files // 5))

        def cache(inner):
            for number in range(256):
                self.fill(inner, f"{number:02x}", lambda part: self.flat(part, files // 2560))
        self.fill(folder, ".cache", cache)

    def home(self, folder, projects):
        def project(inner):
            def repository(git):
                self.file(git, "HEAD", 21)
                for number in range(64):
                    self.fill(git, f"{number:02x}", lambda part: None)
            self.fill(inner, ".git", repository)
            for number in range(10):
                self.fill(inner, self.name(number), lambda part: self.sources(part, 3, (".c", ".h")))
        for place in ("src", "work", "play"):
            def group(inner):
                for number in range(projects // 30):
                    self.fill(inner, self.name(number), project)
            self.fill(folder, place, group)
        for place in (".cache", ".local", ".config"):
            def applications(inner):
                for number in range(projects // 5):
                    self.fill(inner, self.name(number), lambda part: self.sources(part, 2, (".dat",)))
            self.fill(folder, place, applications)

    def edge(self, folder, _):
        os.fchdir(folder)
        for name, size in (("empty", 0), ("one", 1), ("plain", 12_345)):
            self.file(folder, name, size)
        os.link("plain", "plain-again")
        with open("holes", "wb") as holes:
            holes.truncate(1 << 33)
            holes.seek(1 << 32)
            holes.write(b"x")
        os.mkfifo("fifo")
        with socket.socket(socket.AF_UNIX) as listening:
            listening.bind("socket")
        for name, target in (("to-file", "plain"), ("to-self", "."), ("dangling", "nowhere"), ("long", "x" * 3000)):
            os.symlink(target, name)
        for name in (b"\xff\xfe", b"two\nlines", b" blank ", b"-rf", b"back\\slash", b"n" * 255):
            self.file(folder, os.fsdecode(name), 100)
        self.fill(folder, "locked", lambda inner: self.file(inner, "secret", 9_000))
        os.chmod("locked", 0)
        self.files += 4
        level = self.folder(folder, "deep")
        for number in range(1500):
            below = self.folder(level, f"level{number}")
            os.close(level)
            level = below
        self.file(level, "bottom", 5_000)
        os.close(level)


KINDS = {"nodemods": (Tree.web_project, 150_000), "worktrees": (Tree.worktrees, 100_000), "flat": (Tree.flat, 200_000),
         "mixed": (Tree.mixed, 500_000), "home": (Tree.home, 1_500), "edge": (Tree.edge, 1)}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kind", choices=KINDS)
    parser.add_argument("folder")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--scale", type=float, default=1.0)
    arguments = parser.parse_args()
    tree = Tree(arguments.folder, f"{arguments.kind} {arguments.seed}")
    make, amount = KINDS[arguments.kind]
    make(tree, tree.root, max(1, int(amount * arguments.scale)))
    print(tree.files, "files", file=sys.stderr)


if __name__ == "__main__":
    main()
