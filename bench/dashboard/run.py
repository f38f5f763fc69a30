#!/usr/bin/env python3
"""What the dashboard costs the user: its readers run on the window's interface thread every
five seconds for as long as the dashboard shows.

1. The median time of one full reading (every reader once, as the window does it) over 1,000
   readings, by bench/dashboard/reading_bench.cpp built against the engine's libraries.
   Goal: under 1 ms.
2. The window's average processor use over 60 seconds with the dashboard on screen, drawn
   offscreen, and beside it `top -b -d 5` measured the same way for scale. Goal: under 1 %
   of one core. Processor use is the change of utime + stime in /proc/PID/stat over the
   window of measurement, after a warm-up.

    bench/dashboard/run.py [--build DIR] [--seconds N] [--readings N]

DIR is a build folder with the GUI (default build/); its bin/halcyra-gui and the static
libraries of the dashboard engine are used. Nothing is written outside bench/out/dashboard/.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
OUT = REPO / "bench" / "out" / "dashboard"
GOAL_READING_US = 1000.0
GOAL_WINDOW_PERCENT = 1.0


def build_reader(build: Path) -> Path:
    OUT.mkdir(parents=True, exist_ok=True)
    binary = OUT / "reading_bench"
    libraries = [build / "src/dashboard/libhalcyra_dashboard.a", build / "src/platform/libhalcyra_platform.a",
                 build / "src/core/libhalcyra_core.a"]
    for library in libraries:
        if not library.exists():
            sys.exit(f"missing {library}: build the targets halcyra_dashboard and halcyra-gui in {build} first")
    subprocess.run(["g++", "-std=c++20", "-O2", "-DNDEBUG", "-DFMT_HEADER_ONLY",
                    f"-I{REPO / 'src'}", f"-I{build / 'generated'}",
                    str(Path(__file__).parent / "reading_bench.cpp"), *map(str, libraries),
                    "-ldl", "-lpthread", "-o", str(binary)], check=True)
    return binary


def cpu_ticks(pid: int) -> int:
    fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return int(fields[11]) + int(fields[12])  # utime, stime (fields 14 and 15 of the line)


def measure_processes(window: subprocess.Popen, top: subprocess.Popen, seconds: float) -> dict:
    hz = os.sysconf("SC_CLK_TCK")
    start = {"window": cpu_ticks(window.pid), "top": cpu_ticks(top.pid)}
    began = time.monotonic()
    time.sleep(seconds)
    elapsed = time.monotonic() - began
    end = {"window": cpu_ticks(window.pid), "top": cpu_ticks(top.pid)}
    return {name: round((end[name] - start[name]) / hz / elapsed * 100, 3) for name in start}


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=str(REPO / "build"))
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--readings", type=int, default=1000)
    args = parser.parse_args()
    build = Path(args.build).resolve()

    reader = build_reader(build)
    reading = json.loads(subprocess.run([str(reader), str(args.readings)], check=True,
                                        capture_output=True, text=True).stdout)

    gui = build / "bin" / "halcyra-gui"
    if not gui.exists():
        sys.exit(f"missing {gui}")
    with tempfile.TemporaryDirectory() as config, tempfile.TemporaryDirectory() as runtime:
        # A user past the tour: the window opens on the dashboard.
        os.chmod(runtime, 0o700)
        (Path(config) / "Halcyra").mkdir()
        (Path(config) / "Halcyra" / "Halcyra.conf").write_text("[General]\nisOnboardingComplete=true\n")
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=config, XDG_RUNTIME_DIR=runtime)
        window = subprocess.Popen([str(gui)], env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        top = subprocess.Popen(["top", "-b", "-d", "5"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            time.sleep(5)  # start-up and the entry animation are not the steady cost
            if window.poll() is not None:
                sys.exit("the window ended early")
            use = measure_processes(window, top, args.seconds)
        finally:
            for process in (window, top):
                process.terminate()
                process.wait(timeout=10)

    result = {
        "reading": reading,
        "window_percent_of_one_core": use["window"],
        "top_percent_of_one_core": use["top"],
        "seconds": args.seconds,
        "goals_met": reading["median_us"] < GOAL_READING_US and use["window"] < GOAL_WINDOW_PERCENT,
    }
    (OUT / "result.json").write_text(json.dumps(result, indent=2) + "\n")
    print(json.dumps(result, indent=2))


if __name__ == "__main__":
    main()
