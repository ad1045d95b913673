"""Times the array calls of the package `corvale` beside the same work in C++, in NumPy's own way and
in a Python loop over scalar calls. Prints a table of medians; ends with 1 where an array call into
arrays that exist takes more than 1.5 times the C++ loop.

    python bench/python_arrays.py [ELEMENTS [ROUNDS]]

The C++ loops (python_arrays.cpp) are compiled here against the package's own library and called in
this process, on the same arrays, in turns with the calls from Python. What they give is compared
first. The Python loop is timed on 20,000 elements.
"""

from __future__ import annotations

import ctypes
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
from typing import Any, Callable, NamedTuple, Optional

import numpy as np

import corvale

HERE = pathlib.Path(__file__).resolve().parent
LIMIT = 1.5
LOOP = 20000


class Topic(NamedTuple):
    """A call: its arguments, those that are no arrays last, and NumPy's way to the same end."""

    name: str
    given: tuple[Any, ...]
    numpy: Optional[Callable[..., Any]] = None


def turned(v: Any, degrees: Any, k: Any) -> Any:
    """The formula of rodrigues_rot as NumPy has it."""
    angle = np.radians(degrees)[:, None]
    s, c = np.sin(angle), np.cos(angle)
    return v * c + np.cross(k, v) * s + k * np.sum(k * v, axis=-1, keepdims=True) * (1 - c)


def topics(count: int) -> list[Topic]:
    random = np.random.default_rng(1)
    values = random.normal(size=count) * 10.0 ** random.integers(-3, 6, count)
    numbers = random.integers(1, 340000, count, dtype=np.int32)
    fields = np.char.rjust(np.char.mod("%.12g", values).astype("S23"), 23)
    row = b",".join(b" %.15E" % value for value in values[:10]).replace(b"E+0", b"E+00").ljust(256)
    rows = np.array([row, row[24:] + row[:24], (b" 0.000000000000000E+000 ," * 9).ljust(256)])
    degrees = random.uniform(-90, 90, count)
    a, b = random.normal(size=(2, count, 3))
    m = random.normal(size=(count, 6, 6))
    squares = m @ m.transpose(0, 2, 1) + np.eye(6)
    packed = np.ascontiguousarray(squares[:, np.tril_indices(6)[0], np.tril_indices(6)[1]])
    keys = np.char.ljust(random.integers(0, 10**12, count).astype("S32"), 32)
    indices = np.arange(count)
    return [
        Topic("num_to_alpha5", (numbers,), lambda x: np.char.zfill(x.astype("S6"), 5)),
        Topic("alpha5_to_num", (corvale.num_to_alpha5(numbers % 100000),), lambda x: x.astype(np.int32)),
        Topic("str_to_real", (fields,), lambda x: x.astype(float)),
        Topic("fx0_to_text", (values, 12), lambda x, n: np.char.mod("%.12f", x).astype("S12")),
        Topic("compress_csv_line", (np.resize(rows, count),)),
        Topic("fmod2p", (values,), lambda x: np.mod(x, 2 * np.pi)),
        Topic("deg_to_ddmmsss_str", (degrees,)),
        Topic("is_dma", (numbers.astype(np.int64) * 5,), lambda key: (key != 0) & (key % 10 == 0)),
        Topic("cross", (a, b), np.cross),
        Topic("rodrigues_rot", (a, degrees, b), turned),
        Topic("mag", (a,), lambda v: np.linalg.norm(v, axis=-1)),
        Topic("cholesky", (squares, b[:, :1] + np.zeros(6)),
              lambda a, b: (np.linalg.inv(a), np.linalg.solve(a, b[..., None]))),
        Topic("mtx_inv", (m,), np.linalg.inv),
        Topic("lta_to_sqr_mtx", (packed,)),
        Topic("isort", (random.permutation(count).astype(np.int32) + 1,), np.unique),
        Topic("quick_sort", (keys, indices), lambda k, c: (np.argsort(k), k)),
    ]


def compiled(folder: str) -> ctypes.CDLL:
    """The C++ loops, linked with the library that the package has loaded."""
    path = f"{folder}/loops.so"
    library = corvale.capi.library_path()
    subprocess.run(["c++", "-std=c++20", "-O3", "-ffp-contract=off", "-shared", "-fPIC", f"-I{HERE.parent}",
                    str(HERE / "python_arrays.cpp"), library, "-o", path], check=True)
    return ctypes.CDLL(path)


def loop_of(topic: Topic, loops: ctypes.CDLL, out: tuple[Any, ...]) -> Callable[[], Any]:
    """A call of the C++ loop that writes `out`."""
    arrays = [array for array in (*topic.given, *out) if isinstance(array, np.ndarray)]
    function, count = getattr(loops, topic.name), ctypes.c_int64(len(arrays[0]))
    return lambda: function(count, *(ctypes.c_void_p(array.ctypes.data) for array in arrays))


def calls_of(topic: Topic, loops: ctypes.CDLL) -> dict[str, Callable[[], Any]]:
    """The ways to do one topic; those that ought to agree do, or this ends."""
    call = getattr(corvale, topic.name)
    result = call(*topic.given)
    results = result if isinstance(result, tuple) else (result,)
    out, own = tuple(np.empty_like(a) for a in results), tuple(np.empty_like(a) for a in results)
    plain = loop_of(topic, loops, own)
    plain()
    # A matrix of C++ is the transpose of what NumPy sees in the same memory.
    given = topic.given if topic.name != "mtx_inv" else (topic.given[0].transpose(0, 2, 1),)
    wanted = call(*given) if topic.name == "mtx_inv" else results[0]
    assert (wanted.transpose(0, 2, 1) if topic.name == "mtx_inv" else wanted).tobytes() == own[0].tobytes(), topic.name
    into = out if len(out) > 1 else out[0]
    ways: dict[str, Callable[[], Any]] = {
        "C++": plain,
        "into": lambda: call(*topic.given, out=into),
        "new": lambda: call(*topic.given),
    }
    if topic.numpy is not None:
        way = topic.numpy
        ways["NumPy"] = lambda: way(*topic.given)
    return ways


def seconds(call: Callable[[], Any]) -> float:
    """Processor time of this thread: other work on the machine does not count."""
    start = time.thread_time()
    call()
    return time.thread_time() - start


def gain_of_threads(topic: Topic, rounds: int) -> float:
    """How many times as fast two threads are, by the clock on the wall."""
    call = getattr(corvale, topic.name)
    result = call(*topic.given)
    gains = []
    for _ in range(rounds):
        times = []
        for threads in (1, 2):
            start = time.perf_counter()
            call(*topic.given, out=result, threads=threads)
            times.append(time.perf_counter() - start)
        gains.append(times[0] / times[1])
    return statistics.median(gains)


def python_loop(topic: Topic) -> float:
    """Seconds that scalar calls for all elements would take."""
    if topic.name in ("isort", "quick_sort"):
        return float("nan")
    call, arrays = getattr(corvale, topic.name), [a for a in topic.given if isinstance(a, np.ndarray)]
    rest = topic.given[len(arrays):]
    count = min(LOOP, len(arrays[0]))
    rows = list(zip(*(a[:count].tolist() if a.ndim == 1 else list(a[:count]) for a in arrays)))
    return seconds(lambda: [call(*row, *rest) for row in rows]) * len(arrays[0]) / count


def main(count: int, rounds: int) -> int:
    print(f"{count} elements, medians of {rounds} rounds in ms of processor time; ratios to C++ of the same round\n")
    print("| call | C++ | into out | ratio | new array | ratio | NumPy | Python loop |")
    print("|---|---|---|---|---|---|---|---|")
    worst = 0.0
    with tempfile.TemporaryDirectory() as folder:
        loops = compiled(folder)
        for topic in topics(count):
            ways = calls_of(topic, loops)
            times = [{name: seconds(way) for name, way in ways.items()} for _ in range(rounds)]
            middle = {name: statistics.median(t[name] for t in times) * 1e3 for name in ways}
            ratio = {name: statistics.median(t[name] / t["C++"] for t in times) for name in ways}
            worst = max(worst, ratio["into"])
            print(f"| {topic.name} | {middle['C++']:.2f} | {middle['into']:.2f} | {ratio['into']:.2f} "
                  f"| {middle['new']:.2f} | {ratio['new']:.2f} "
                  f"| {middle.get('NumPy', float('nan')):.1f} | {python_loop(topic) * 1e3:.0f} |", flush=True)
        for topic in topics(count):
            if topic.name in ("cholesky", "mtx_inv", "rodrigues_rot", "str_to_real"):
                print(f"{topic.name}: two threads are {gain_of_threads(topic, rounds):.2f} times as fast")
    print(f"\nlargest ratio into arrays that exist: {worst:.2f}, limit {LIMIT}")
    return 0 if worst <= LIMIT else 1


if __name__ == "__main__":
    sys.exit(main(int((sys.argv[1:] or ["1000000"])[0]), int((sys.argv[2:] or ["9"])[0])))
