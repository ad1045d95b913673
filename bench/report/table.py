#!/usr/bin/env python3
"""Prints what one benchmark program measured as a table.

    build/bench/bench/SomeBench --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \\
        --benchmark_out=FILE.json --benchmark_out_format=json && bench/report/table.py FILE.json...

A ratio is the peer's time over Corvale's in the same repetition, with the smallest and the greatest of
them: above 1 Corvale is faster.
"""
import sys

from chart import show_time
from results import Results


def rows(results):
    for topic, peer, size in results.times:
        ratio = results.ratio(topic, peer, size=size)
        if ratio and peer != "Corvale":
            own, theirs = (show_time(results.median(topic, name, size)) for name in ("Corvale", peer))
            label = topic if size is None else f"{topic}, {size:,}"
            yield (f"| {label} | {own} | {peer} | {theirs} | {ratio.median:.2f} | "
                   f"{ratio.least:.2f} to {ratio.greatest:.2f} |")


print("| workload | Corvale | peer | its time | ratio | spread |\n|---|---|---|---|---|---|")
print("\n".join(rows(Results(sys.argv[1:]))))
