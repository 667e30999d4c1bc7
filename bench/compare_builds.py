#!/usr/bin/env python3
"""Compares the codec benchmarks of two builds of the library side by side.

    bench/compare_builds.py BASE_BUILD_DIR OTHER_BUILD_DIR [--rounds N]
    bench/compare_builds.py BASE_BUILD_DIR OTHER_BUILD_DIR --instructions

Both build directories must have the benchmarks built (VEMBA_BUILD_BENCH=ON, e.g. the `release`
preset and a build with other optimisation flags). By default the two builds' binaries run
alternately, one right after the other, for N rounds (default 3), so that both see the same
machine; each benchmark's figure is the median of its rounds, in ns. With --instructions, each
bridge message of bench/data is decoded 200 times under callgrind in each build, and the figure
is instructions per decode: slower to get, but not moved by other load on the machine (it needs
valgrind: apt-get install valgrind). Prints one
line per benchmark: both figures and OTHER / BASE (below 1: the other build does better).
"""

import argparse
import json
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile

BENCHES = ["bench/vemba_bid_codec_bench", "bench/vemba_checkout_decode_bench"]
COUNTER = "bench/vemba_checkout_decode_count"
DATA = pathlib.Path(__file__).resolve().parent / "data"
DECODES = 200


def run(binary: pathlib.Path) -> dict:
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        # The figures go to a file: some benches print their own summary on standard output.
        subprocess.run([str(binary), f"--benchmark_out={out.name}", "--benchmark_out_format=json",
                        "--benchmark_min_time=0.2"], check=True, capture_output=True)
        document = json.load(open(out.name, encoding="utf-8"))
    return {b["name"]: b["real_time"] for b in document["benchmarks"]
            if b.get("run_type", "iteration") == "iteration" and b["time_unit"] == "ns"}


def instructions(build: pathlib.Path) -> dict:
    out = {}
    for message in sorted(DATA.glob("*.json")):
        log = subprocess.run(
            ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
             "--toggle-collect=vemba_bench_run*", str(build / COUNTER), "decode", str(message),
             str(DECODES)], check=True, capture_output=True, text=True).stderr
        collected = int(re.search(r"Collected : (\d+)", log).group(1))
        out[message.stem] = collected / (DECODES + 1)  # one warm-up decode is counted too
    return out


def main() -> int:
    parser = argparse.ArgumentParser()
    parser.add_argument("base", type=pathlib.Path)
    parser.add_argument("other", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--instructions", action="store_true")
    args = parser.parse_args()
    times = {"base": {}, "other": {}}
    if args.instructions:
        for side in ("base", "other"):
            times[side] = {name: [n] for name, n in instructions(getattr(args, side)).items()}
    for _ in range(0 if args.instructions else args.rounds):
        for bench in BENCHES:
            for side in ("base", "other"):
                for name, ns in run(getattr(args, side) / bench).items():
                    times[side].setdefault(name, []).append(ns)
    unit = "Ir" if args.instructions else "ns"
    print(f"{'benchmark':60} {'base ' + unit:>11} {'other ' + unit:>11} {'other/base':>10}")
    ratios = []
    for name, base in times["base"].items():
        if name not in times["other"]:
            continue
        b, o = statistics.median(base), statistics.median(times["other"][name])
        ratios.append(o / b)
        print(f"{name[:60]:60} {b:11.1f} {o:11.1f} {o / b:10.3f}")
    if ratios:
        print(f"{'geometric mean':60} {'':11} {'':11} {statistics.geometric_mean(ratios):10.3f}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
