#!/usr/bin/env python3
"""Prints a Markdown table from a Google Benchmark JSON file with repetitions.

Benchmarks are named Topic/Peer. A ratio is the peer's time over Corvale's in the same repetition:
above 1 Corvale is faster. The table shows the median and the smallest and largest repetition.

    SomeBench --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \\
              --benchmark_out=FILE.json --benchmark_out_format=json && bench-table.py FILE.json
"""
import collections
import json
import statistics
import sys

TO_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def split_name(name):
    """Topic and peer; threads and arguments belong to the topic, settings to neither."""
    settings = ("real_time", "manual_time")
    parts = [p for p in name.split("/") if p not in settings and not p.startswith("iterations:")]
    topic, peer, rest = parts[0], parts[1], parts[2:]
    return " ".join([topic] + rest), peer


def read(path):
    times = collections.defaultdict(lambda: collections.defaultdict(dict))
    with open(path, encoding="utf-8") as file:
        for run in json.load(file)["benchmarks"]:
            if run.get("run_type") != "iteration" or run.get("error_occurred"):
                continue
            topic, peer = split_name(run["name"])
            is_wall = "real_time" in run["name"] or "manual_time" in run["name"]
            clock = "real_time" if is_wall else "cpu_time"
            times[topic][peer][run.get("repetition_index", 0)] = run[clock] * TO_NS[run["time_unit"]]
    return times


def show(ns):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= size:
            return f"{ns / size:.3g} {unit}"
    return f"{ns:.3g} ns"


def main():
    print("| workload | Corvale | peer | its time | ratio | spread |")
    print("|---|---|---|---|---|---|")
    for path in sys.argv[1:]:
        for topic, peers in read(path).items():
            ours = peers.get("Corvale", {})
            for peer, theirs in peers.items():
                if peer == "Corvale" or not ours:
                    continue
                ratios = [theirs[k] / ours[k] for k in theirs if k in ours]
                print(f"| {topic} | {show(statistics.median(ours.values()))} | {peer} "
                      f"| {show(statistics.median(theirs.values()))} "
                      f"| {statistics.median(ratios):.2f} "
                      f"| {min(ratios):.2f} to {max(ratios):.2f} |")


if __name__ == "__main__":
    main()
