#!/usr/bin/env python3
"""Generates the duplicate finder's benchmark trees, the same bytes on every run.

  a-duplicates  rich in true duplicates: contents in 2 to 5 copies, some as hard links, beside
                unique files, sizes from 4 KiB to 1 MiB
  b-edges       many files of a few sizes that differ from each other only in their first or
                their last byte, so that nothing is a duplicate
  c-mixed       more than 40,000 files in a nested tree: many below the 4 KiB minimum, unique
                files whose sizes collide by chance, and copies

A tree is written again only when its marker (random state and version) differs.
"""
import argparse
import os
import random
import shutil
import sys

RANDOM_STATE = 20240611
VERSION = 2
POOL_BYTES = 64 << 20


class Contents:
    """Distinct contents as slices of one random pool from a fixed start, each stamped with its number."""

    def __init__(self, rng):
        self.pool = rng.randbytes(POOL_BYTES)
        self.rng = rng
        self.count = 0

    def make(self, size):
        self.count += 1
        stamp = self.count.to_bytes(8, "little")
        if size <= len(stamp):
            return stamp[:size]
        start = self.rng.randrange(0, POOL_BYTES - size) if size < POOL_BYTES else 0
        body = self.pool[start:start + size - len(stamp)]
        while len(body) < size - len(stamp):
            body += self.pool[: size - len(stamp) - len(body)]
        return stamp + body


def write(path, data, mtime):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(data)
    os.utime(path, (mtime, mtime))


def log_uniform(rng, low, high):
    return int(round(low * (high / low) ** rng.random()))


def folder(rng, root, breadth, depth):
    parts = [f"d{rng.randrange(breadth)}" for _ in range(rng.randrange(1, depth + 1))]
    return os.path.join(root, *parts)


def tree_duplicates(root, rng, contents):
    base_time = 1_600_000_000
    files = 0
    for content_number in range(2000):
        size = log_uniform(rng, 4096, 1 << 20)
        data = contents.make(size)
        copies = rng.randint(2, 5)
        first = None
        for copy in range(copies):
            path = os.path.join(folder(rng, root, 12, 3), f"c{content_number}_{copy}.dat")
            if os.path.exists(path):
                continue
            if first is not None and rng.random() < 0.1:
                os.makedirs(os.path.dirname(path), exist_ok=True)
                os.link(first, path)
            else:
                write(path, data, base_time + rng.randrange(10_000_000))
                first = first or path
            files += 1
    for unique_number in range(1000):
        size = log_uniform(rng, 4096, 1 << 20)
        write(os.path.join(folder(rng, root, 12, 3), f"u{unique_number}.dat"), contents.make(size),
              base_time + rng.randrange(10_000_000))
        files += 1
    return files


def tree_edges(root, rng, contents):
    base_time = 1_600_000_000
    files = 0
    for size_class in range(16):
        size = 64 * 1024 + size_class * 1024
        base = bytearray(contents.make(size))
        first_values = [v for v in range(256) if v != base[0]][:250]
        last_values = [v for v in range(256) if v != base[-1]][:250]
        for i, value in enumerate(first_values):
            data = bytearray(base)
            data[0] = value
            write(os.path.join(root, f"s{size_class}", f"first{i % 10}", f"f{i}.bin"), bytes(data),
                  base_time + rng.randrange(10_000_000))
            files += 1
        for i, value in enumerate(last_values):
            data = bytearray(base)
            data[-1] = value
            write(os.path.join(root, f"s{size_class}", f"last{i % 10}", f"l{i}.bin"), bytes(data),
                  base_time + rng.randrange(10_000_000))
            files += 1
    return files


def tree_mixed(root, rng, contents):
    base_time = 1_600_000_000
    written = []
    files = 0
    for number in range(45000):
        kind = rng.random()
        path = os.path.join(folder(rng, root, 10, 4), f"m{number}.bin")
        if kind < 0.55:
            data = contents.make(rng.randint(1, 4095))
        elif kind < 0.88 or not written:
            data = contents.make(rng.randint(4096, 65536))
        elif kind < 0.98:
            with open(rng.choice(written), "rb") as original:
                data = original.read()
        else:
            data = contents.make(log_uniform(rng, 65536, 2 << 20))
        write(path, data, base_time + rng.randrange(10_000_000))
        if len(data) >= 4096 and len(written) < 5000:
            written.append(path)
        files += 1
    return files


TREES = {"a-duplicates": tree_duplicates, "b-edges": tree_edges, "c-mixed": tree_mixed}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--out", default=os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "out", "duplicates"))
    parser.add_argument("trees", nargs="*", default=list(TREES))
    args = parser.parse_args()
    out = os.path.abspath(args.out)
    for name in args.trees:
        root = os.path.join(out, name)
        marker = os.path.join(out, name + ".generated")
        expected = f"random state {RANDOM_STATE} version {VERSION}\n"
        if os.path.isdir(root) and os.path.exists(marker) and open(marker).read() == expected:
            print(f"{name}: up to date", file=sys.stderr)
            continue
        shutil.rmtree(root, ignore_errors=True)
        rng = random.Random(f"{RANDOM_STATE}-{name}")
        contents = Contents(rng)
        files = TREES[name](root, rng, contents)
        with open(marker, "w") as f:
            f.write(expected)
        print(f"{name}: {files} files", file=sys.stderr)


if __name__ == "__main__":
    main()
