#!/usr/bin/env python3
"""Writes src/cli/hot-functions.txt: the functions of `halcyra` that its commands run, in the
order the link should place them.

The kernel maps an executable's code in 64 KiB pieces around each page a process touches, so
code that runs together should lie together: scattered over the whole executable, the few
hundred functions a command runs bring in a dozen pieces that are mostly code it never runs.
The command line is linked with this list as its symbol order (see src/cli/CMakeLists.txt),
which packs them at the front of the code.

Runs each command below once under valgrind's callgrind on small trees it makes in a
temporary folder, keeps the executed functions that the executable defines, and writes them
grouped by the first command that ran them (start-up first), sorted by name within a group.
Functions that no longer exist are ignored by the link and new ones simply land elsewhere, so
a stale list only costs memory: run this again after larger changes.

Usage: scripts/order-functions.py [--halcyra build/bin/halcyra]
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile

REPO = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUTPUT = os.path.join(REPO, "src", "cli", "hot-functions.txt")


def write(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as handle:
        handle.write(data)


def make_trees(top):
    """Small inputs for each command: a tree with folders, files and a link; two copies and
    two unique files; a home with caches; a file to shred."""
    for i in range(40):
        write(os.path.join(top, "tree", "a", f"f{i}"), b"x" * (i * 100))
        write(os.path.join(top, "tree", "a", "b", f".g{i}"), b"y" * 10)
    os.makedirs(os.path.join(top, "tree", "empty"))
    os.symlink("../a", os.path.join(top, "tree", "a", "up"))
    pool = os.urandom(3 * 20000)
    write(os.path.join(top, "dups", "x", "one"), pool[:20000])
    write(os.path.join(top, "dups", "y", "one"), pool[:20000])
    write(os.path.join(top, "dups", "x", "two"), pool[20000:40000])
    write(os.path.join(top, "dups", "y", "three"), pool[40000:])
    write(os.path.join(top, "home", "Library", "Caches", "com.example.app", "blob"), b"z" * 5000)
    write(os.path.join(top, "home", "Library", "Logs", "Example", "run.log"), b"log\n" * 50)
    os.makedirs(os.path.join(top, "root"))
    write(os.path.join(top, "shred", "secret"), os.urandom(10000))


def executed(halcyra, arguments, scratch):
    out = os.path.join(scratch, "callgrind.out")
    subprocess.run(["valgrind", "--tool=callgrind", "--demangle=no", f"--callgrind-out-file={out}", halcyra] + arguments,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    names = set()
    with open(out, errors="replace") as profile:
        for line in profile:
            match = re.match(r"^c?fn=\(\d+\) (.+)$", line)
            if match:
                names.add(match.group(1).strip())
    os.remove(out)
    return names


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--halcyra", default=os.path.join(REPO, "build", "bin", "halcyra"))
    args = parser.parse_args()
    if not os.access(args.halcyra, os.X_OK):
        sys.exit(f"no executable at {args.halcyra}; build first")

    defined = set()
    listing = subprocess.run(["nm", "--defined-only", args.halcyra], capture_output=True, text=True, check=True).stdout
    for line in listing.splitlines():
        parts = line.split()
        if len(parts) == 3 and parts[1] in "tTwWiI":
            defined.add(parts[2])

    with tempfile.TemporaryDirectory() as top:
        make_trees(top)
        commands = [
            ["--version"],
            ["analyze", "--json", os.path.join(top, "tree")],
            ["analyze", os.path.join(top, "tree")],
            ["duplicates", "--json", os.path.join(top, "dups")],
            ["duplicates", os.path.join(top, "dups")],
            ["scan", "--json", "--home", os.path.join(top, "home"), "--root", os.path.join(top, "root")],
            ["clean", "--dry-run", "--home", os.path.join(top, "home"), "--root", os.path.join(top, "root")],
            ["shred", "--yes", "--passes", "1", os.path.join(top, "shred", "secret")],
        ]
        placed = set()
        order = []
        for command in commands:
            group = sorted((executed(args.halcyra, command, top) & defined) - placed)
            placed.update(group)
            order.extend(group)
            print(f"{' '.join(command[:1])}: {len(group)} functions", file=sys.stderr)

    with open(OUTPUT, "w") as handle:
        handle.write("".join(name + "\n" for name in order))
    print(f"wrote {len(order)} functions to {os.path.relpath(OUTPUT, REPO)}", file=sys.stderr)


if __name__ == "__main__":
    main()
