"""Reads what the benchmark programs measured: medians, ratios with their spread, exponents."""
import collections
import json
import math
import statistics

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
SETTINGS = ("real_time", "manual_time")

Ratio = collections.namedtuple("Ratio", "median least greatest")


def split_name(name):
    """Topic, peer and size; what a benchmark was told about time and iterations is none of these."""
    parts = [part for part in name.split("/")
             if part not in SETTINGS and not part.startswith(("iterations:", "repeats:"))]
    topic, peer = parts[:2]
    size = None
    for part in parts[2:]:
        if part.startswith("threads:"):
            topic += f" {part[len('threads:'):]} threads"
        else:
            size = int(part)
    return topic, peer, size


def nanoseconds(run):
    """Time of an item where items are counted, else of an iteration: of the processor, where several
    threads take part of the wall clock."""
    if run.get("items_per_second"):
        return 1e9 / run["items_per_second"]
    is_wall = "manual_time" in run["name"] or "threads:" in run["name"]
    return run["real_time" if is_wall else "cpu_time"] * NANOSECONDS[run["time_unit"]]


class Results:
    def __init__(self, paths):
        self.times = collections.defaultdict(dict)  # (topic, peer, size) -> {repetition: nanoseconds}
        self.disagreements = []
        for path in paths:
            self._read(path)

    def _read(self, path):
        with open(path, encoding="utf-8") as file:
            runs = json.load(file)["benchmarks"]
        for run in runs:
            if run.get("error_occurred"):
                self.disagreements.append(f"{run['name']}: {run.get('error_message', '')}")
            elif run["run_type"] == "iteration":
                times = self.times[split_name(run["name"])]
                times[len(times)] = nanoseconds(run)

    def peers(self, topic):
        """In the order of the program."""
        return list(dict.fromkeys(peer for t, peer, _ in self.times if t == topic))

    def sizes(self, topic, peer="Corvale"):
        return sorted(size for t, p, size in self.times if (t, p) == (topic, peer) and size)

    def median(self, topic, peer="Corvale", size=None):
        times = self.times.get((topic, peer, size))
        return statistics.median(times.values()) if times else None

    def ratio(self, topic, peer, own="Corvale", size=None):
        """The peer's time over our own in the same repetition: above 1 we are faster."""
        ours, theirs = (self.times.get((topic, name, size)) for name in (own, peer))
        if not ours or not theirs:
            return None
        ratios = [theirs[i] / ours[i] for i in theirs if i in ours]
        return Ratio(statistics.median(ratios), min(ratios), max(ratios))


def exponent(points):
    """The slope of log time against log size, by least squares."""
    logs = [(math.log(size), math.log(time)) for size, time in points]
    x, y = (statistics.fmean(column) for column in zip(*logs))
    return sum((a - x) * (b - y) for a, b in logs) / sum((a - x) ** 2 for a, _ in logs)
