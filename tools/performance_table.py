#!/usr/bin/env python3
# MIT License.
"""Runs the benchmarks and prints the tables of docs/performance.md.

Processor time of one thread; of several repetitions the quickest counts, as nothing but other work makes one slower.
"""
import argparse
import json
import re
import subprocess

MODES = range(15)


def run(program, pattern, options, judge="cpu_time"):
    """Of each benchmark that matches, its record with the least `judge`."""
    out = subprocess.run(
        [f"{options.programs}/{program}", f"--benchmark_filter={pattern}", "--benchmark_format=json",
         f"--benchmark_min_time={options.seconds}", f"--benchmark_repetitions={options.repetitions}",
         "--benchmark_enable_random_interleaving=true"], check=True, capture_output=True, text=True).stdout
    best = {}
    for record in json.loads(out)["benchmarks"]:
        if record["run_type"] != "iteration":
            continue
        name = record["run_name"].split("/iterations:")[0]
        if name not in best or record[judge] < best[name][judge]:
            best[name] = record
    return best


def per_frame(record):
    """Nanoseconds per frame, that is per sample of both channels."""
    for counter in ("per_frame", "s_per_frame"):
        if counter in record:
            return record[counter] * 1e9
    return 1e9 / record["items_per_second"]


def by_numbers(runs):
    """Names and records in the order of the numbers in the names; the runs come in any."""
    return sorted(runs.items(), key=lambda run: [int(number) for number in re.findall(r"\d+", run[0])])


def table(head, rows):
    print("|", " | ".join(head), "|")
    print("|", " | ".join(["---"] + ["--:"] * (len(head) - 1)), "|")
    for row in rows:
        print("|", " | ".join(f"{x:.0f}" if isinstance(x, float) and x >= 10 else f"{x:.1f}"
                              if isinstance(x, float) else str(x) for x in row), "|")
    print()


def print_modes(options):
    runs = run("kesrel_engine_bench", "^(frame_step|external_carrier|whole_engine)/", options)
    table(["mode", "", "frame step", "external carrier", "own carrier", "x real time"],
          [[m, runs[f"external_carrier/mode:{m}/block:512"]["label"],
            *(per_frame(runs[name]) for name in (f"frame_step/mode:{m}", f"external_carrier/mode:{m}/block:512",
                                                 f"whole_engine/mode:{m}/block:512")),
            runs[f"whole_engine/mode:{m}/block:512"]["x_real_time"]] for m in MODES])


def print_stages(options):
    runs = run("kesrel_engine_bench", "^(carrier/|equaliser/|chorus/|reverb/|commit$|frame_step/mode:-1$)", options)
    pair = run("kesrel_dsp_bench", "^forward_and_inverse/1024$", options)["forward_and_inverse/1024"]
    doors = run("kesrel_door_bench", ".", options)
    rows = [[name, per_frame(record)] for name, record in by_numbers(runs) if name.startswith("carrier/")]
    rows += [["equaliser", per_frame(runs["equaliser/block:512"])],
             ["frame step without an algorithm", per_frame(runs["frame_step/mode:-1"])],
             ["of it the pair of transforms", pair["cpu_time"] / 512],
             ["chorus", per_frame(runs["chorus/block:512"])]]
    rows += [[name.removesuffix("/block:512"), per_frame(record)] for name, record in by_numbers(runs)
             if name.startswith("reverb/") and name.endswith("/block:512")]
    rows += [["commit, in blocks of 64", runs["commit"]["cpu_time"] / 64]]
    rows += [["effect alone, blocks of " + block, per_frame(doors["effect_alone/block:" + block])]
             for block in "512 32".split()]
    rows += [[f"effect in a door at {rate} Hz", per_frame(doors[f"door/rate:{rate}"])]
             for rate in (44100, 48000, 88200, 96000, 192000)]
    table(["stage", "ns per frame"], rows)


def print_worst_blocks(options):
    options.seconds = 0.01  # it has a length of its own
    runs = run("kesrel_engine_bench", "^worst_block/", options, "worst_%")
    cases = [(block, load) for block in (32, 64) for load in (0, 1, 2)]
    loads = ["external", "own", "own and effects"]
    table(["mode, % of"] + [f"{block}, {loads[load]}" for block, load in cases],
          [[m, *(runs[f"worst_block/mode:{m}/block:{block}/load:{load}"]["worst_%"] for block, load in cases)]
           for m in MODES])


def print_instances(options):
    starts = run("kesrel_engine_bench", "^first_sound/", options)
    sessions = run("kesrel_engine_bench", "^forty_instances/", options)
    parts = ["create_us", "first_block_us", "sounding_us", "beyond_us", "first_of_process_us"]
    table(["start", *parts], [[name, *(record[part] for part in parts)] for name, record in by_numbers(starts)])
    table(["forty in turn", "ns per frame", "x real time", "MB"],
          [[name, per_frame(record), record["x_real_time"], record["megabytes"]] for name, record in by_numbers(sessions)])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tables", nargs="*", default=["modes", "stages", "worst", "instances"],
                        help="modes, stages, worst or instances; default all")
    parser.add_argument("--programs", default="build/release/bin", help="folder of the benchmark programs")
    parser.add_argument("--seconds", type=float, default=0.1, help="of each benchmark and repetition")
    parser.add_argument("--repetitions", type=int, default=5)
    options = parser.parse_args()
    printers = {"modes": print_modes, "stages": print_stages, "worst": print_worst_blocks, "instances": print_instances}
    for name in printers:
        if name in options.tables:
            printers[name](options)


if __name__ == "__main__":
    main()
