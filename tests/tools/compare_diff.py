#!/usr/bin/env python3
"""Compares what `corvale diff` and `corvale load --why` say with what `corvale load` sets.

    compare_diff.py PROGRAM ROUNDS [SEED]

Each round loads two random files of cards, every file in a process of its own, and holds the
differences of the loads against those of `corvale diff`. That a place decides a value is tried: the
number that stands there is replaced by another, which the load must set then. The
first round that is not right is printed with its files and ends the run with 1.
"""
import json
import pathlib
import random
import re
import subprocess
import sys
import tempfile

MARK = "-86420.25"  # no random file sets it
WORDS = ["1", "-2.5", ".5E+3", "7d-2", "1.5+2", "1Q3", "0", "-0", "3*4", "2*-0.0", "9*", "128*0", "100*1.25",
         "120*", "1e400", "4.9e-324", "123456789012345678901234567890", "X", "0*1", "1.5e", "2*x", "/", ",", ", ,", "\t"]
LINES = ["QZ_DMA_ON", "qz_dma_all_on", "QZ_DMA_ALL_ON and more", "QZ_DMA_ON\r", "* QZ_DMA_ON", " QZ_DMA_ON", "",
         "QZ_MOIC", "QZ_MOICS 1", "STEP 60.0"]


def random_line(rng):
    if rng.random() < 0.4:
        return rng.choice(LINES)
    gap = rng.choice([" ", " ", "  ", ",", " , "])
    words = rng.choices(WORDS[:-5] if rng.random() < 0.5 else WORDS, k=rng.randint(0, 8))
    if rng.random() < 0.05:
        words.insert(rng.randint(0, len(words)), " " * rng.randint(450, 520))
    return rng.choice(["QZ_MOIC ", "qz_moic ", "QZ_MOIC   "]) + gap.join(words)


def random_file(rng):
    return [random_line(rng) for _ in range(rng.randint(0, 6))]


def changed(rng, lines):
    """A file that has much in common with another one."""
    lines = list(lines)
    for _ in range(rng.randint(0, 2)):
        at = rng.randint(0, len(lines))
        lines[at:at + rng.randint(0, 1)] = [random_line(rng)] if rng.random() < 0.7 else []
    return lines


class Round:
    def __init__(self, program, folder):
        self.program, self.folder = program, folder

    def run(self, *arguments):
        done = subprocess.run([self.program, *arguments], cwd=self.folder, capture_output=True, text=True)
        return done.returncode, json.loads(done.stdout)

    def write(self, name, lines):
        (self.folder / name).write_bytes("\n".join(lines).encode())

    def load(self, name):
        _, loaded = self.run("load", "--json", name)
        values = {("element", i + 1): value for i, value in enumerate(loaded["moic"])}
        return values | {("mode", mode): float(loaded[mode]) for mode in ("elsetKeyMode", "allKeyMode", "dupKeyMode")}

    def check_place(self, lines, key, said):
        """That what stands at the place decides: another number there is what a load sets."""
        line, at = lines[said["line"] - 1], said["column"] - 1
        word = re.match(r"[^ \t,/]*", line[at:512])[0]
        assert word.startswith(said["written"]), (word, said)
        count = re.match(r"\d+\*", word)
        lines = list(lines)
        if key[0] == "element":
            lines[said["line"] - 1] = line[:at] + (count[0] if count else "") + MARK + line[at + len(word):]
        else:
            lines[:said["line"]] = [""] * said["line"]  # another card may set the mode, a later one
        self.write("changed", lines)
        value = self.load("changed")[key]
        assert value == (float(MARK) if key[0] == "element" else float(said["cards"] > 1)), (key, said, value)

    def check(self, rng):
        files = {"left": random_file(rng)}
        files["right"] = changed(rng, files["left"]) if rng.random() < 0.7 else random_file(rng)
        loads = {}
        for name, lines in files.items():
            self.write(name, lines)
            loads[name] = self.load(name)
        status, said = self.run("diff", "--json", "left", "right")
        wanted = [key for key in loads["left"] if repr(loads["left"][key]) != repr(loads["right"][key])]
        differences = {next(iter(each.items())): each for each in said["differences"]}
        assert set(differences) == set(wanted), set(differences) ^ set(wanted)
        assert status == (1 if wanted else 0) and said["same"] == (not wanted), status
        for key, each in differences.items():
            for name in files:
                assert repr(each[name]["value"]) == repr(loads[name][key]), (key, each)
                assert each[name]["cards"] == 0 or each[name]["file"] == name
        self.check_why(rng, files, loads, differences)
        return len(wanted)

    def check_why(self, rng, files, loads, differences):
        name = rng.choice(["left", "right"])
        keys = list(loads[name])
        _, said = self.run("load", "--json", "--why", ",".join(str(key[1]) for key in keys), name)
        places = dict(zip(keys, said["why"]))
        for key, place in places.items():
            assert next(iter(place.items())) == key and repr(place.pop("value")) == repr(loads[name][key]), key
            if key in differences:
                assert all(differences[key][name][part] == place[part] for part in place if part != key[0]), key
        decided = [key for key in keys if places[key]["cards"] > 0 and fits(files[name], places[key])]
        if decided:
            key = rng.choice(decided)
            self.check_place(files[name], key, places[key])


def fits(lines, place):
    """Whether another number can take the place: one at the end of a line might be cut."""
    return place["column"] < 490 and len(lines[place["line"] - 1]) < 490


def main(program, rounds, seed=1):
    rng = random.Random(int(seed))
    with tempfile.TemporaryDirectory() as folder:
        each = Round(pathlib.Path(program).resolve(), pathlib.Path(folder))
        different = 0
        for number in range(int(rounds)):
            try:
                different += each.check(rng) > 0
            except (AssertionError, LookupError, ValueError) as fault:
                sides = {name: (each.folder / name).read_bytes() for name in ("left", "right")}
                print(f"round {number}: {fault!r}\n{sides}")
                return 1
    print(f"{rounds} random pairs of files, of which {different} differ: 0 differences from the loads")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
