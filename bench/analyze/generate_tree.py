#!/usr/bin/env python3
"""Builds the fixed test tree of the disk analyzer benchmark.

About 300,000 small files in about 30,000 folders, from a fixed random state, so every run and every
machine walks the same shape: some hidden files and folders, some empty folders, symbolic
links to files and folders, a link loop and a pair of links pointing at each other. Link
targets are short, so the links take no blocks of their own.

Usage: generate_tree.py DEST [--files N] [--folders N] [--random-state N]
A finished tree leaves DEST/.complete; an existing finished tree with the same parameters is
kept as it is.
"""

import argparse
import os
import random
import shutil
import sys


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("dest")
    parser.add_argument("--files", type=int, default=300_000)
    parser.add_argument("--folders", type=int, default=30_000)
    parser.add_argument("--random-state", type=int, default=20240601)
    args = parser.parse_args()

    stamp = os.path.join(args.dest, ".complete")
    wanted = f"files={args.files} folders={args.folders} random_state={args.random_state} links=2\n"
    if os.path.exists(stamp) and open(stamp).read() == wanted:
        print(f"tree in place: {args.dest}", file=sys.stderr)
        return
    if os.path.exists(args.dest):
        shutil.rmtree(args.dest)
    rng = random.Random(args.random_state)
    root = os.path.join(args.dest, "tree")
    os.makedirs(root)

    # Folders: each new one goes under a random earlier one, favouring recent ones so the
    # tree gets depth, but never deeper than 11 levels.
    folders = [("", 0)]
    for i in range(args.folders - 1):
        while True:
            parent, depth = folders[rng.randrange(len(folders))] if rng.random() < 0.3 else \
                folders[max(0, len(folders) - 1 - int(rng.expovariate(1 / 40)))]
            if depth < 11:
                break
        name = ("." if rng.random() < 0.05 else "") + f"dir{i:05d}"
        path = f"{parent}/{name}" if parent else name
        os.mkdir(os.path.join(root, path))
        folders.append((path, depth + 1))

    # Files: folders get uneven shares (a few hold hundreds), and about one in fifteen gets
    # none, which leaves it empty unless it has sub-folders.
    weights = [0.0 if rng.random() < 0.07 else rng.paretovariate(1.5) for _ in folders]
    chosen = rng.choices(range(len(folders)), weights=weights, k=args.files)
    zero = bytes(300_000)
    some_files = []
    for i, index in enumerate(chosen):
        roll = rng.random()
        if roll < 0.10:
            size = 0
        elif roll < 0.70:
            size = rng.randint(1, 4000)
        elif roll < 0.95:
            size = rng.randint(4001, 16000)
        else:
            size = rng.randint(16001, 256000)
        name = ("." if rng.random() < 0.05 else "") + f"file{i:06d}.dat"
        folder = folders[index][0]
        fd = os.open(os.path.join(root, folder, name), os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644)
        if size:
            os.write(fd, zero[:size])
        os.close(fd)
        if i % 300 == 0:
            some_files.append((folder, name))

    # Links: to files beside them, to their own folder and its parent, a loop, and two
    # links naming each other.
    for i in range(2_000):
        if i % 2 == 0:
            folder, target = some_files[rng.randrange(len(some_files))]
        else:
            folder = folders[rng.randrange(len(folders))][0]
            target = ".." if rng.random() < 0.5 else "."
        os.symlink(target, os.path.join(root, folder, f"link{i:04d}"))
    os.symlink(".", os.path.join(root, "loop"))
    os.symlink("ping", os.path.join(root, "pong"))
    os.symlink("pong", os.path.join(root, "ping"))

    with open(stamp, "w") as out:
        out.write(wanted)
    print(f"tree written: {root}", file=sys.stderr)


if __name__ == "__main__":
    main()
