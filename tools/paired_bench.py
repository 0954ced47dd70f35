#!/usr/bin/env python3
# MIT License.
"""Compares two builds of a benchmark program, turn by turn.

One program after the other runs each benchmark for a short time, again and again, so that whatever else the machine
does meets both alike. Printed are the medians of each and the median of the turns' ratios, which is what to trust.
"""
import argparse
import json
import statistics
import subprocess


def run(program, pattern, seconds):
    """Processor time in ns of each benchmark, per frame where it says so, and else per iteration or item."""
    out = subprocess.run(
        [program, f"--benchmark_filter={pattern}", f"--benchmark_min_time={seconds}", "--benchmark_format=json"],
        check=True, capture_output=True, text=True).stdout
    times = {}
    for entry in json.loads(out)["benchmarks"]:
        if "per_frame" in entry:
            times[entry["name"]] = entry["per_frame"] * 1e9
        elif "items_per_second" in entry:
            times[entry["name"]] = 1e9 / entry["items_per_second"]
        else:
            times[entry["name"]] = entry["cpu_time"]
    return times


def names_of(program, pattern):
    out = subprocess.run([program, f"--benchmark_filter={pattern}", "--benchmark_list_tests"], check=True,
                         capture_output=True, text=True).stdout
    return out.split()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("before", help="a benchmark program of the earlier build")
    parser.add_argument("after", help="the same program of the later one")
    parser.add_argument("--filter", default=".", help="which benchmarks, a regular expression")
    parser.add_argument("--turns", type=int, default=8)
    parser.add_argument("--seconds", type=float, default=0.1, help="of each benchmark in each turn")
    options = parser.parse_args()
    later = set(names_of(options.after, options.filter))
    print(f"{'benchmark':44} {'before':>9} {'after':>9}  ratio (lowest to highest)   ns")
    for name in [name for name in names_of(options.before, options.filter) if name in later]:
        pairs = []
        for turn in range(options.turns):
            order = [options.before, options.after] if turn % 2 == 0 else [options.after, options.before]
            times = {program: run(program, f"^{name}$", options.seconds)[name] for program in order}
            pairs.append((times[options.before], times[options.after]))
        ratios = [after / before for before, after in pairs]
        print(f"{name:44} {statistics.median(b for b, _ in pairs):9.2f} {statistics.median(a for _, a in pairs):9.2f}"
              f"  {statistics.median(ratios):.3f} ({min(ratios):.3f} to {max(ratios):.3f})", flush=True)


if __name__ == "__main__":
    main()
