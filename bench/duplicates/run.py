#!/usr/bin/env python3
"""Times `halcyra duplicates --json` against fdupes, jdupes and rdfind on the trees of
generate.py, in one run, and checks that halcyra's groups are jdupes' groups.

Each tool counts hard links as duplicates and ignores files below 4096 bytes. Every round
runs all four tools one after the other, in a rotating order, so the trees stay in the file
cache and no tool always runs first; one round before the timed ones warms the cache. The
figure per tool is the median wall time of the rounds; the ratio is halcyra's median over the
tool's. The processor time (user and system, all threads) is shown beside it: unlike the wall
time, it hardly changes when other work shares the machine. Peak memory is the maximum resident size of one more run of each, from /usr/bin/time.
Without --bin, build/bin/halcyra is used and built (Release) if it is missing. The peer tools
come from the Debian packages listed under "benchmarks" in scripts/packages.txt.
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
ROOT = os.path.abspath(os.path.join(HERE, "..", ".."))
TREES = ["a-duplicates", "b-edges", "c-mixed"]


def commands(halcyra, tree):
    return {
        "halcyra": [halcyra, "duplicates", tree, "--json"],
        "jdupes": ["jdupes", "-r", "-H", "-q", "-X", "size+=:4096", tree],
        "fdupes": ["fdupes", "-r", "-H", "-q", "-G", "4096", tree],
        "rdfind": ["rdfind", "-dryrun", "true", "-removeidentinode", "false", "-minsize", "4096",
                   "-makeresultsfile", "false", tree],
    }


def timed(command):
    """Wall seconds and processor seconds (user and system, all threads) of one run."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    if os.waitstatus_to_exitcode(status) != 0:
        sys.exit(f"failed: {' '.join(command)}")
    return wall, usage.ru_utime + usage.ru_stime


def peak_kib(command):
    result = subprocess.run(["/usr/bin/time", "-f", "%M"] + command, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, check=True)
    return int(result.stderr.strip().splitlines()[-1])


def halcyra_groups(command):
    output = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout
    return {frozenset(f["path"] for f in group["files"]) for group in json.loads(output)}


def jdupes_groups(command):
    output = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True,
                            text=True, errors="surrogateescape").stdout
    groups, current = set(), []
    for line in output.split("\n"):
        if line:
            current.append(line)
        elif current:
            groups.add(frozenset(current))
            current = []
    if current:
        groups.add(frozenset(current))
    return groups


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--bin", help="the halcyra executable to time")
    parser.add_argument("--out", default=os.path.join(ROOT, "bench", "out", "duplicates"))
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("trees", nargs="*", default=TREES)
    args = parser.parse_args()

    missing = [tool for tool in ("fdupes", "jdupes", "rdfind", "/usr/bin/time") if shutil.which(tool) is None]
    if missing:
        sys.exit("missing: " + ", ".join(missing) + " (scripts/setup.sh installs them)")
    halcyra = args.bin or os.path.join(ROOT, "build", "bin", "halcyra")
    if not args.bin and not os.path.exists(halcyra):
        subprocess.run(["cmake", "-S", ROOT, "-B", os.path.join(ROOT, "build"), "-G", "Ninja",
                        "-DCMAKE_BUILD_TYPE=Release", "-DHALCYRA_GUI=OFF"], check=True)
        subprocess.run(["cmake", "--build", os.path.join(ROOT, "build"), "--target", "halcyra", "-j2"], check=True)

    subprocess.run([sys.executable, os.path.join(HERE, "generate.py"), "--out", args.out] + args.trees, check=True)
    summary = {}
    for name in args.trees:
        tree = os.path.join(args.out, name)
        tools = commands(os.path.abspath(halcyra), tree)
        order = list(tools)
        for tool in order:
            timed(tools[tool])  # warm-up
        times = {tool: [] for tool in order}
        cpu = {tool: [] for tool in order}
        for round_number in range(args.runs):
            shift = round_number % len(order)
            for tool in order[shift:] + order[:shift]:
                wall, processor = timed(tools[tool])
                times[tool].append(wall)
                cpu[tool].append(processor)
        medians = {tool: statistics.median(values) for tool, values in times.items()}
        cpu_medians = {tool: statistics.median(values) for tool, values in cpu.items()}
        memory = {tool: peak_kib(tools[tool]) for tool in order}
        ours, theirs = halcyra_groups(tools["halcyra"]), jdupes_groups(tools["jdupes"])
        agree = ours == theirs
        summary[name] = {"median_seconds": medians, "median_cpu_seconds": cpu_medians, "peak_kib": memory,
                         "groups": len(ours), "load_average": os.getloadavg()[0],
                         "agrees_with_jdupes": agree, "runs": args.runs}

        print(f"\n{name}: {len(ours)} groups, " + ("same groups as jdupes" if agree else
              f"DIFFERENT from jdupes ({len(ours - theirs)} only ours, {len(theirs - ours)} only jdupes')"))
        print(f"  load average {os.getloadavg()[0]:.1f}")
        print(f"  {'tool':<8} {'median s':>9} {'halcyra/tool':>13} {'cpu s':>7} {'cpu ratio':>10} {'peak MiB':>9}")
        for tool in order:
            ratio = medians["halcyra"] / medians[tool]
            cpu_ratio = cpu_medians["halcyra"] / cpu_medians[tool]
            print(f"  {tool:<8} {medians[tool]:>9.3f} {ratio:>13.2f} {cpu_medians[tool]:>7.3f} {cpu_ratio:>10.2f}"
                  f" {memory[tool] / 1024:>9.1f}")
        fastest = min((t for t in order if t != "halcyra"), key=lambda t: medians[t])
        print(f"  against the fastest ({fastest}): {medians['halcyra'] / medians[fastest]:.2f}")

    with open(os.path.join(args.out, "results.json"), "w") as f:
        json.dump(summary, f, indent=2)


if __name__ == "__main__":
    main()
