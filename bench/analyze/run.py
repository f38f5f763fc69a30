#!/usr/bin/env python3
"""Times `halcyra analyze --json` against du -s, gdu and ncdu on the fixed benchmark tree.

Each round runs every tool once untimed (to warm the file cache, which this kind of machine
drops after about a minute) and at once again timed; the order of the tools rotates from
round to round, and halcyra also runs with --threads 1. Prints the median wall time and
processor time (user and system) and the peak resident memory of each tool, the ratios of
halcyra to each of them, what halcyra and du take above the peak of their own --version, and
whether halcyra's total agrees with du -s in bytes of allocated space (du also counts the
blocks of folders and links; those are taken out).

Needs /usr/bin/time (Debian package time), and gdu and ncdu for those columns.

Usage: run.py [--halcyra PATH] [--runs N] [--out DIR] [--threads N]
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.dirname(os.path.dirname(HERE))


def measure(command, report):
    """Wall seconds, peak resident KiB and processor seconds of one run, output discarded. The peak comes from
    /usr/bin/time: the resource usage of a child forked from this script would count the
    script's own pages, which the child holds until it executes the tool."""
    start = time.perf_counter()
    subprocess.run(["/usr/bin/time", "-o", report, "-f", "%M %U %S"] + command,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    elapsed = time.perf_counter() - start
    with open(report) as lines:
        peak, user, system = lines.read().split()[-3:]
        return elapsed, int(peak), float(user) + float(system)


def du_bytes(tree):
    output = subprocess.run(["du", "-s", "-B1", tree], capture_output=True, text=True, check=True).stdout
    return int(output.split()[0])


def non_file_blocks(tree):
    """Allocated bytes of the folders and links below `tree`, itself included, as du counts them."""
    total = os.lstat(tree).st_blocks * 512
    for folder, dirs, files in os.walk(tree):
        for name in dirs + files:
            info = os.lstat(os.path.join(folder, name))
            if not (info.st_mode & 0o170000 == 0o100000):
                total += info.st_blocks * 512
    return total


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--halcyra", default=None, help="the halcyra executable")
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("--out", default=os.path.join(REPO, "bench", "out", "analyze"))
    parser.add_argument("--threads", type=int, default=0, help="halcyra's --threads (0: its default)")
    args = parser.parse_args()

    halcyra = args.halcyra
    if halcyra is None:
        for candidate in ("build/bin/halcyra", "build-analyzer/bin/halcyra"):
            if os.access(os.path.join(REPO, candidate), os.X_OK):
                halcyra = os.path.join(REPO, candidate)
                break
    if halcyra is None:
        sys.exit("no halcyra executable found; pass --halcyra")

    subprocess.run([sys.executable, os.path.join(HERE, "generate_tree.py"), args.out], check=True)
    tree = os.path.join(args.out, "tree")

    halcyra_command = [halcyra, "analyze", "--json", tree]
    if args.threads:
        halcyra_command[2:2] = ["--threads", str(args.threads)]
    tools = [("halcyra", halcyra_command), ("du", ["du", "-s", tree])]
    if not args.threads:
        # The same walk on one thread, to show what the second one brings.
        tools.insert(1, ("halcyra-1", halcyra_command[:2] + ["--threads", "1"] + halcyra_command[2:]))
    if shutil.which("gdu"):
        tools.append(("gdu", ["gdu", "--non-interactive", "--no-progress", tree]))
    if shutil.which("ncdu"):
        tools.append(("ncdu", ["ncdu", "-0", "-o", "/dev/null", tree]))

    report = os.path.join(args.out, "time-report")
    times = {name: [] for name, _ in tools}
    peaks = {name: [] for name, _ in tools}
    cpu = {name: [] for name, _ in tools}
    for round_index in range(args.runs):
        order = tools[round_index % len(tools):] + tools[:round_index % len(tools)]
        for name, command in order:
            measure(command, report)  # warm-up
            elapsed, peak, seconds = measure(command, report)
            times[name].append(elapsed)
            peaks[name].append(peak)
            cpu[name].append(seconds)
        print(f"round {round_index + 1}/{args.runs} done", file=sys.stderr)

    # What each command adds to the memory its executable takes before it does any work.
    baseline = {}
    for name, command in (("halcyra", [halcyra, "--version"]), ("du", ["du", "--version"])):
        baseline[name] = statistics.median(measure(command, report)[1] for _ in range(5))

    result = json.loads(subprocess.run(halcyra_command, capture_output=True, check=True).stdout)
    du_total = du_bytes(tree)
    du_files = du_total - non_file_blocks(tree)

    print(f"tree: {result['fileCount']} files, {result['directoryCount']} folders, "
          f"cpus: {os.cpu_count()}, load: {os.getloadavg()[0]:.1f}")
    print(f"{'tool':9} {'median s':>9} {'min s':>7} {'max s':>7} {'cpu s':>6} {'peak MiB':>9} {'halcyra/tool':>13}")
    mine = statistics.median(times["halcyra"])
    for name, _ in tools:
        median = statistics.median(times[name])
        print(f"{name:9} {median:9.3f} {min(times[name]):7.3f} {max(times[name]):7.3f} "
              f"{statistics.median(cpu[name]):6.2f} {max(peaks[name]) / 1024:9.1f} {mine / median:13.2f}")
    fastest = min((statistics.median(times[name]), name) for name, _ in tools if not name.startswith("halcyra"))
    print(f"against the fastest other tool ({fastest[1]}): {mine / fastest[0]:.2f}")
    print("peak above --version (medians): " + ", ".join(
        f"{name} {(statistics.median(peaks[name]) - baseline[name]) / 1024:.2f} MiB"
        for name in ("halcyra", "du")) +
        f" (--version: halcyra {baseline['halcyra'] / 1024:.2f} MiB, du {baseline['du'] / 1024:.2f} MiB)")
    agrees = "agrees" if result["totalSize"] == du_files else "DIFFERS"
    print(f"total: halcyra {result['totalSize']} bytes, du -s {du_total} bytes of which files "
          f"{du_files}: {agrees}")


if __name__ == "__main__":
    main()
