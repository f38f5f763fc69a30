#!/usr/bin/env python3
"""Times `halcyra scan --json` against `du -s` over the same folders of a synthetic home.

The home (at least 100,000 files spread over the places the junk scan reads) is generated once
with a fixed random state into bench/out/scan/, and reused while the random state and layout stay the same.
Each round runs du and the scan alternately, each timed run right after an untimed warm-up of
the same command, because this machine drops file cache that has not been touched for about a
minute. The figure is the ratio of the medians.

    bench/scan/run.py [--runs N] [--bin PATH]

Without --bin, build/bin/halcyra is used and built (Release) if it is missing.
"""

import argparse
import os
import random
import statistics
import subprocess
import sys
import time
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
OUT = REPO / "bench" / "out" / "scan"
RANDOM_STATE = 20240601
LAYOUT_VERSION = "1"
DAY = 86400

# The folders du measures: every place the generator writes to.
PLACES = [
    "Library/Caches",
    "Library/Logs",
    "Library/Application Support",
    "Library/Containers",
    "Library/Group Containers",
    "Library/Developer",
    "Library/Saved Application State",
    ".npm",
    "dev",
]


class Generator:
    def __init__(self, home: Path, random_state: int):
        self.home = home
        self.rng = random.Random(random_state)
        self.files = 0

    def file(self, relative: str):
        path = self.home / relative
        path.parent.mkdir(parents=True, exist_ok=True)
        # Logical sizes without writing data: the scan and du read metadata only.
        with open(path, "wb") as handle:
            handle.truncate(self.rng.choice([0, 1, 17, 512, 4096, 9000, 65536, 300000]))
        self.files += 1

    def tree(self, base: str, count: int, max_depth: int = 3, fanout: int = 4):
        """`count` files in a tree of folders below `base`, some levels deep."""
        for i in range(count):
            depth = self.rng.randint(0, max_depth)
            parts = [f"d{self.rng.randrange(fanout)}" for _ in range(depth)]
            self.file("/".join([base, *parts, f"f{i}.bin"]))

    def age(self, relative: str, days: int):
        when = time.time() - days * DAY
        os.utime(self.home / relative, (when, when), follow_symlinks=False)

    def build(self):
        rng = self.rng
        for n in range(300):
            name = f"com.vendor{n}.app" if n % 3 else f"org.gone{n}.tool"
            self.tree(f"Library/Caches/{name}", 150, max_depth=4)
            self.age(f"Library/Caches/{name}", 40)  # old enough to be orphans as well
        for n in range(50):
            self.tree(f"Library/Logs/Vendor{n}", 40, max_depth=1)
        for n in range(40):
            app = f"Library/Application Support/App{n}"
            self.tree(f"{app}/logs", 50, max_depth=1)
            self.tree(f"{app}/Cache/Cache_Data", 200, max_depth=2)
            self.tree(f"{app}/Data", 30, max_depth=1)
        for n in range(60):
            self.tree(f"Library/Containers/com.sandboxed{n}.app/Data/Library/Caches", 100, max_depth=2)
        for n in range(20):
            self.tree(f"Library/Group Containers/TEAM{n}.com.vendor.group/Library/Caches", 100, max_depth=2)
        chrome = "Library/Application Support/Google/Chrome"
        for profile in ["Default", "Profile 1", "Profile 2", "Profile 3"]:
            for cache in ["GPUCache", "Code Cache/js", "Service Worker/CacheStorage"]:
                self.tree(f"{chrome}/{profile}/{cache}", 300, max_depth=1)
        for n in range(10000):
            self.file(f".npm/_cacache/content-v2/sha512/{n % 256:02x}/{rng.randrange(256):02x}/{n:08x}")
        for n in range(5):
            self.tree(f"Library/Developer/Xcode/DerivedData/Project{n}-abcdef/Build", 2000, max_depth=4)
        for n in range(20):
            project = f"dev/project{n}"
            self.tree(f"{project}/src", 50, max_depth=2)
            self.tree(f"{project}/node_modules", 500, max_depth=3, fanout=8)
            self.age(f"{project}/node_modules", 30)
        for n in range(100):
            state = f"Library/Saved Application State/com.vendor{n}.app.savedState"
            self.tree(state, 5, max_depth=0)
            self.age(state, 45)


def ensure_home() -> Path:
    home = OUT / "home"
    stamp = OUT / "stamp"
    expected = f"{RANDOM_STATE} {LAYOUT_VERSION}"
    if stamp.exists() and stamp.read_text() == expected and home.exists():
        return home
    if OUT.exists():
        subprocess.run(["rm", "-rf", "--", str(OUT)], check=True)
    OUT.mkdir(parents=True)
    (OUT / "root").mkdir()
    generator = Generator(home, RANDOM_STATE)
    generator.build()
    stamp.write_text(expected)
    print(f"generated {generator.files} files in {home}", file=sys.stderr)
    return home


def ensure_binary(given: str | None) -> Path:
    if given:
        return Path(given).resolve()
    binary = REPO / "build" / "bin" / "halcyra"
    if not binary.exists():
        subprocess.run(["cmake", "-S", str(REPO), "-B", str(REPO / "build"), "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DHALCYRA_GUI=OFF"], check=True)
        subprocess.run(["cmake", "--build", str(REPO / "build"), "--target", "halcyra", "-j2"], check=True)
    return binary


def timed(command: list[str]) -> float:
    start = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    return time.perf_counter() - start


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("--bin", help="the halcyra executable to time")
    args = parser.parse_args()

    home = ensure_home()
    binary = ensure_binary(args.bin)
    scan = [str(binary), "scan", "--json", "--home", str(home), "--root", str(OUT / "root")]
    du = ["du", "-s", *[str(home / place) for place in PLACES]]
    files = sum(len(names) for _, _, names in os.walk(home))
    print(f"home: {home} ({files} files)")
    print(f"scan: {' '.join(scan)}")
    print(f"du:   du -s <the {len(PLACES)} folders the generator writes to>")

    du_times, scan_times = [], []
    for _ in range(args.runs):
        timed(du)
        du_times.append(timed(du))
        timed(scan)
        scan_times.append(timed(scan))
    du_median = statistics.median(du_times)
    scan_median = statistics.median(scan_times)
    print(f"du -s          median {du_median * 1000:8.1f} ms  ({', '.join(f'{t * 1000:.0f}' for t in du_times)})")
    print(f"halcyra scan   median {scan_median * 1000:8.1f} ms  ({', '.join(f'{t * 1000:.0f}' for t in scan_times)})")
    print(f"ratio scan/du: {scan_median / du_median:.2f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
