#!/usr/bin/env python3
"""Times `halcyra shred --passes 3` of a 1 GiB file against GNU `shred -n 3 -u` and against
the plain disk work of the same run: four writes of the file's bytes with
`dd ... conv=fdatasync` (the encryption and three passes, each synced) plus the free-space
fill (500 MiB written without a sync, then removed).

Every timed command gets a freshly written and synced file of random bytes (made the same way
each time, untimed), the three commands alternate in a rotating order, and the figures are
the medians of the same run. Peak memory of `halcyra` is measured with /usr/bin/time (Debian
package time) when it is installed.

    bench/shred/run.py [--runs N] [--size-mib N] [--bin PATH]

Without --bin, build/bin/halcyra is used and built (Release) if it is missing. Everything is
written under bench/out/shred/ and removed at the end.
"""

import argparse
import json
import os
import random
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
OUT = REPO / "bench" / "out" / "shred"
RANDOM_STATE = 20240612
MIB = 1 << 20
FILL_MIB = 500

GOAL_GNU = 0.55  # at most this share of GNU shred's time
GOAL_DD = 1.2    # at most this multiple of the plain disk work


def ensure_binary(given: str | None) -> Path:
    if given:
        return Path(given).resolve()
    binary = REPO / "build" / "bin" / "halcyra"
    if not binary.exists():
        subprocess.run(["cmake", "-S", str(REPO), "-B", str(REPO / "build"), "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DHALCYRA_GUI=OFF"], check=True)
        subprocess.run(["cmake", "--build", str(REPO / "build"), "--target", "halcyra", "-j2"], check=True)
    return binary


def write_victim(path: Path, size_mib: int, block: bytes) -> None:
    with open(path, "wb") as handle:
        for _ in range(size_mib):
            handle.write(block)
        handle.flush()
        os.fsync(handle.fileno())


def run_timed(command: list[str]) -> tuple[float, str]:
    """Wall seconds and standard output of one command."""
    start = time.perf_counter()
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
    elapsed = time.perf_counter() - start
    if done.returncode != 0:
        raise SystemExit(f"failed ({done.returncode}): {' '.join(command)}")
    return elapsed, done.stdout.decode()


def peak_memory_kib(command: list[str]) -> int | None:
    """Peak resident size of one untimed run, or None without /usr/bin/time."""
    if not Path("/usr/bin/time").exists():
        return None
    report = OUT.parent / "shred-peak-memory"
    subprocess.run(["/usr/bin/time", "-f", "%M", "-o", str(report), *command], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
    peak = int(report.read_text().split()[-1])
    report.unlink()
    return peak


def dd_script(victim: Path, size_mib: int) -> list[str]:
    fill = victim.parent / "dd-fill"
    fill_mib = min(size_mib, FILL_MIB)
    writes = "; ".join(
        f"dd if=/dev/zero of='{victim}' bs=1M count={size_mib} conv=fdatasync,notrunc status=none" for _ in range(4))
    return ["sh", "-ec",
            f"{writes}; dd if=/dev/zero of='{fill}' bs=1M count={fill_mib} status=none; "
            f"rm -f '{fill}' '{victim}'"]


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--size-mib", type=int, default=1024)
    parser.add_argument("--bin", help="the halcyra executable to time")
    args = parser.parse_args()

    binary = ensure_binary(args.bin)
    if OUT.exists():
        shutil.rmtree(OUT)
    OUT.mkdir(parents=True)
    victim = OUT / "victim.bin"
    block = random.Random(RANDOM_STATE).randbytes(MIB)
    size = args.size_mib * MIB

    commands = {
        "halcyra shred --passes 3": [str(binary), "shred", "--yes", "--json", "--passes", "3", str(victim)],
        "shred -n 3 -u": ["shred", "-n", "3", "-u", str(victim)],
        "4 x dd + fill": dd_script(victim, args.size_mib),
    }
    names = list(commands)
    times: dict[str, list[float]] = {name: [] for name in names}
    print(f"file: {args.size_mib} MiB, {args.runs} runs, load average {os.getloadavg()[0]:.1f}", file=sys.stderr)
    try:
        for round_ in range(args.runs):
            order = names[round_ % len(names):] + names[:round_ % len(names)]
            for name in order:
                write_victim(victim, args.size_mib, block)
                elapsed, output = run_timed(commands[name])
                if victim.exists():
                    raise SystemExit(f"{name} left the file behind")
                if name.startswith("halcyra"):
                    result = json.loads(output)
                    if result["filesShredded"] != 1 or result["totalBytes"] != size:
                        raise SystemExit(f"unexpected result: {output}")
                    leftovers = [p.name for p in OUT.iterdir()]
                    if leftovers:
                        raise SystemExit(f"left behind: {leftovers}")
                times[name].append(elapsed)
                print(f"  run {round_ + 1}: {name:26} {elapsed:6.2f} s", file=sys.stderr)
        write_victim(victim, args.size_mib, block)
        peak_kib = peak_memory_kib(commands[names[0]])
    finally:
        shutil.rmtree(OUT, ignore_errors=True)

    medians = {name: statistics.median(values) for name, values in times.items()}
    ours = medians[names[0]]
    gnu_ratio = ours / medians[names[1]]
    dd_ratio = ours / medians[names[2]]
    for name in names:
        print(f"{name:26} median {medians[name]:6.2f} s  (min {min(times[name]):.2f}, max {max(times[name]):.2f})")
    if peak_kib is not None:
        print(f"peak memory of halcyra: {peak_kib / 1024:.1f} MiB")
    print(f"ratio to GNU shred:     {gnu_ratio:.2f}  (goal at most {GOAL_GNU}) {'met' if gnu_ratio <= GOAL_GNU else 'MISSED'}")
    print(f"ratio to dd + fill:     {dd_ratio:.2f}  (goal at most {GOAL_DD}) {'met' if dd_ratio <= GOAL_DD else 'MISSED'}")
    print(f"load average now: {os.getloadavg()[0]:.1f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
