"""Laws that every procedure over arrays keeps: arrays as scalars, any strides, out, errors, threads.

Run against the installed package, not in the folder of its sources.
"""

from __future__ import annotations

import ast
import pathlib
import re
import runpy
import subprocess
import sys
import threading
import time
import tracemalloc
import unittest
import warnings
from typing import Any, Callable, Iterator

import numpy as np

import corvale
from corvale import _arrays

HERE = pathlib.Path(__file__).resolve().parent
COUNT = 24
TEXTS = [b"STEP = 60 sec", b" -12.5E2", b"", b" ", b"(3, 4)", b"A0000", b"on", b"a\0b", b"1.500,2.0",
         b"KEY = yes", b"2023/10/05", b"1.2.3"]
# What an argument of a name needs beyond its type; a text that is not listed is one of TEXTS.
SHORT = {"pattern": [b"0", b" ", b"", b"12"], "replacement": [b"x", b"", b"long"]}


def operand(row: dict[str, Any], place: int, count: int) -> Any:
    """`count` good values for an argument, the same ones every time."""
    random = np.random.default_rng(place)
    name, (kind, inner) = row["arguments"][place], row["inputs"][place]
    if kind == "bytes":
        return np.resize(np.array(SHORT.get(name, TEXTS)), count)
    if name in ("first", "last", "axis"):
        return random.integers(0, 5, count, dtype=np.int32)
    if kind != "float64":
        return random.integers(-400000, 400000, count, dtype=kind) * 5
    if name == "packed":
        return random.normal(size=(count, 10))
    if name == "table":
        return np.sort(random.normal(size=(count, 9)), axis=-1)
    shape = (3,) if inner == 1 else (3, 3)[:inner]
    values = random.normal(size=(count, *shape)) * 100
    if inner == 2:
        values = values @ values.transpose(0, 2, 1) + np.eye(3)
    return values


def arguments(row: dict[str, Any], count: int = COUNT) -> list[Any]:
    given = [operand(row, place, count) for place in range(len(row["inputs"]))]
    if row["most_characters"]:
        given[-1] = 12
    return given


def results(value: Any) -> tuple[Any, ...]:
    return value if isinstance(value, tuple) else (value,)


def same(first: Any, second: Any) -> bool:
    """The same types, shapes and bits."""
    pairs = list(zip(results(first), results(second)))
    return all(np.asarray(a).dtype == np.asarray(b).dtype and np.shape(a) == np.shape(b)
               and np.asarray(a).tobytes() == np.asarray(b).tobytes() for a, b in pairs)


def layouts(array: Any) -> Iterator[tuple[str, Any]]:
    """The same values in other places of memory."""
    if not isinstance(array, np.ndarray):
        while True:
            yield "one value", array
    spread = np.zeros((2 * len(array), *array.shape[1:]), array.dtype)
    spread[::2] = array
    yield "every second", spread[::2]
    yield "backwards", array[::-1].copy()[::-1]
    yield "columns first", np.asfortranarray(array)
    record = np.zeros(array.shape, np.dtype([("pad", "S3"), ("value", array.dtype)]))
    record["value"] = array
    yield "unaligned field", record["value"]
    if array.dtype.kind in "if":
        yield "foreign bytes", array.astype(array.dtype.newbyteorder())
    yield "list", array.tolist() if array.dtype.kind != "S" else [bytes(text) for text in array]


Call = Callable[..., Any]
Law = Callable[[Any, Call, dict[str, Any], list[Any]], None]


def for_every_procedure(law: Law) -> Callable[[unittest.TestCase], None]:
    """A test that holds every row of the table to `law`."""

    def test(self: unittest.TestCase) -> None:
        for row in _arrays._TABLE:
            with self.subTest(row["name"]):
                law(self, getattr(corvale, row["name"]), row, arguments(row))

    return test


class EveryProcedure(unittest.TestCase):
    """One law a test, over all rows of the table."""

    @for_every_procedure
    def test_array_is_its_elements(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        whole = results(call(*given))
        for i in range(COUNT):
            # The scalar of an array has lost its width with its NULs.
            single = [a[i].ljust(a.itemsize) if a.dtype.kind == "S" and row["arguments"][k] not in SHORT
                      else a[i] for k, a in enumerate(given) if isinstance(a, np.ndarray)]
            single += [a for a in given if not isinstance(a, np.ndarray)]
            for array, value in zip(whole, results(call(*single))):
                self.assertEqual(np.asarray(value, array.dtype).tobytes(), array[i].tobytes()
                                 if array.dtype.kind != "S" else bytes(array[i]), single)

    @for_every_procedure
    def test_any_layout(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wanted = call(*given)
        for names in zip(*(layouts(array) for array in given)):
            self.assertTrue(same(call(*(array for _, array in names)), wanted), names[0][0])

    @for_every_procedure
    def test_broadcasts(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wide = [a[:, None] if isinstance(a, np.ndarray) and k == 0 else a
                for k, a in enumerate(given)]
        wanted = results(call(*given))
        for array, expected in zip(results(call(*wide)), wanted):
            if len(given) > 1 and not row["most_characters"]:
                array = array[np.arange(COUNT), np.arange(COUNT)]
            self.assertTrue(same(array.reshape(expected.shape), expected))
        empty = [a[:0] if isinstance(a, np.ndarray) else a for a in given]
        self.assertTrue(all(len(array) == 0 for array in results(call(*empty))))

    @for_every_procedure
    def test_out(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wanted = results(call(*given))
        spread = [np.zeros((2 * len(a), *a.shape[1:]), a.dtype) for a in wanted]
        out = tuple(a[::2] for a in spread)
        got = results(call(*given, out=out if len(out) > 1 else out[0]))
        self.assertTrue(all(a is b for a, b in zip(got, out)))
        self.assertTrue(same(out, wanted))
        self.assertFalse(any(a[1::2].tobytes().strip(b"\0") for a in spread), "wrote between the elements")
        short = tuple(a[:-1] for a in out)
        readonly = tuple(np.broadcast_to(a, a.shape) for a in wanted)
        other = tuple(a.astype("f4" if a.dtype.kind != "f" else "i4", casting="unsafe")
                      if a.dtype.kind != "S" else a.astype("U") for a in wanted)
        for bad, error in ((short, ValueError), (readonly, TypeError), (other, TypeError)):
            with self.assertRaises(error):
                call(*given, out=bad if len(bad) > 1 else bad[0])

    @for_every_procedure
    def test_out_over_an_input(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wanted = call(*given)
        if isinstance(wanted, tuple) or not same(wanted[:0], given[0][:0]):
            return
        memory = np.zeros((COUNT + 1, *given[0].shape[1:]), given[0].dtype)
        for start in (0, 1):  # on the input itself, and one element behind it
            memory[:COUNT] = given[0]
            call(memory[:COUNT], *given[1:], out=memory[start:start + COUNT])
            self.assertTrue(same(memory[start:start + COUNT], wanted), start)

    @for_every_procedure
    def test_threads_give_what_one_gives(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wanted = call(*given)
        for threads in (1, 2, 3, COUNT + 7):
            self.assertTrue(same(call(*given, threads=threads), wanted), threads)
        wide = [a[::-1, None] if isinstance(a, np.ndarray) and k == 0 else a for k, a in enumerate(given)]
        self.assertTrue(same(call(*wide, threads=4), call(*wide)))
        for threads in (0, -1):
            with self.assertRaises(ValueError):
                call(*given, threads=threads)

    @for_every_procedure
    def test_masks_are_joined(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        wanted = results(call(*given))
        arrays = [k for k, a in enumerate(given) if isinstance(a, np.ndarray)]
        masked, joint = list(given), np.zeros(COUNT, bool)
        for k in (arrays[0], arrays[-1]):
            mask = np.zeros(given[k].shape, bool)
            mask.reshape(COUNT, -1)[k + 1::5, -1] = True  # of a vector or matrix one element
            masked[k] = np.ma.array(given[k], mask=mask)
            joint[k + 1::5] = True
        got = results(call(*masked))
        for array, expected in zip(got, wanted):
            self.assertIsInstance(array, np.ma.MaskedArray)
            self.assertTrue(same(array.data, expected))
            shown = np.ma.getmaskarray(array).reshape(COUNT, -1)
            self.assertTrue((shown == joint[:, None]).all())
        into = tuple(np.ma.array(np.zeros_like(a)) for a in wanted)
        call(*masked, out=into if len(into) > 1 else into[0])
        self.assertTrue((np.ma.getmaskarray(into[0]).reshape(COUNT, -1) == joint[:, None]).all())
        plain = tuple(np.zeros_like(a) for a in wanted)
        with self.assertRaises(ValueError):
            call(*masked, out=plain if len(plain) > 1 else plain[0])

    @for_every_procedure
    def test_what_has_an_array_is_taken(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        class Column:  # what a Series of pandas is to NumPy
            def __init__(self, values: Any) -> None:
                self.values = values

            def __array__(self, dtype: Any = None, copy: Any = None) -> Any:
                return self.values if dtype is None else self.values.astype(dtype)

        columns = [Column(a) if isinstance(a, np.ndarray) else a for a in given]
        self.assertTrue(same(call(*columns), call(*given)))
        if all(a.dtype.kind != "S" for a in given if isinstance(a, np.ndarray)):
            views = [a.data if isinstance(a, np.ndarray) else a for a in given]
            self.assertTrue(same(call(*views), call(*given)))
        objects = [a.astype(object) if isinstance(a, np.ndarray) else a for a in given]
        with self.assertRaisesRegex(TypeError, "objects of Python"):
            call(*objects)

    @for_every_procedure
    def test_bad_arguments_are_errors(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        bad = [None, object(), {}, 1j, [[1], [1, 2]], "\u00e9", np.zeros(2, "M8[s]"),
               np.zeros(2, "f4,i4"), np.zeros(2, "O"), np.zeros(2, "c16"), np.zeros(COUNT + 1, "g")]
        for place, (kind, _) in enumerate(row["inputs"]):
            for value in bad + ([2**70, [2**70]] if kind != "float64" else []):
                with self.assertRaises((TypeError, ValueError, OverflowError)), \
                        warnings.catch_warnings():
                    warnings.simplefilter("ignore")  # NumPy's, of the ragged list
                    call(*given[:place], value, *given[place + 1:])

    @for_every_procedure
    def test_no_copy_of_strided_input(self, call: Call, row: dict[str, Any], given: list[Any]) -> None:
        many = [np.repeat(a, 1024, axis=0)[::-2] if isinstance(a, np.ndarray) else a for a in given]
        if row["name"] in ("replace", "find_rec_idx"):
            return  # the first fills texts, the second searches tables that are dense
        out = call(*many)
        tracemalloc.start()
        call(*many, out=out)
        peak = tracemalloc.get_traced_memory()[1]
        tracemalloc.stop()
        self.assertLess(peak, 16384)

    def test_described(self) -> None:
        made = runpy.run_path(str(HERE.parent / "arrays/make_stubs.py"))["stub"]()
        text = pathlib.Path(_arrays.__file__).with_name("_arrays.pyi").read_text()
        self.assertEqual(made, text, "make it again: arrays/make_stubs.py")
        page = runpy.run_path(str(HERE.parent / "arrays/make_reference.py"))["reference"]()
        told = (HERE.parents[2] / "docs/python-reference.md").read_text()
        self.assertEqual(page, told, "make it again: arrays/make_reference.py")
        self.assertEqual(set(_arrays.__all__), set(re.findall(r"{#python_(?!topic_|reference|capi)(\w+)}", told)))
        for node in ast.parse(text).body:
            if isinstance(node, ast.FunctionDef):
                lines = getattr(corvale, node.name).__doc__.splitlines()
                labels = [line.split()[0] for line in lines if line[:8].strip() and line[7:8] == " "]
                self.assertLessEqual({"C++", "Shapes", "Errors"}, set(labels), node.name)


class Process(unittest.TestCase):
    def test_lock_is_free_meanwhile(self) -> None:
        matrices = np.random.default_rng(1).normal(size=(1000, 60, 60))
        keys = np.resize(np.array([b"b", b"a", b"c"]), 2000000)
        numbers = np.random.default_rng(3).permutation(2000000).astype(np.int32)
        for work in (lambda: corvale.mtx_inv(matrices), lambda: corvale.quick_sort(keys),
                     lambda: corvale.isort(numbers)):
            worker = threading.Thread(target=work)
            interval = sys.getswitchinterval()
            sys.setswitchinterval(10.0)  # this thread runs only if the other lets it
            try:
                worker.start()
                turns = 0
                while worker.is_alive():
                    time.sleep(0.0005)
                    turns += 1
            finally:
                sys.setswitchinterval(interval)
                worker.join()
            self.assertGreater(turns, 2)

    def test_threads_get_what_one_gets(self) -> None:
        values = np.random.default_rng(2).normal(size=20000) * 1e4
        wanted = corvale.deg_to_ddmmsss_str(values)
        found: list[Any] = [None] * 4

        def work(i: int) -> None:
            found[i] = corvale.deg_to_ddmmsss_str(values)

        threads = [threading.Thread(target=work, args=(i,)) for i in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertTrue(all(same(one, wanted) for one in found))

    def test_both_parts_share_one_library(self) -> None:
        corvale.fmod2p([1.0])
        corvale.capi.Corvale().init()
        maps = pathlib.Path("/proc/self/maps").read_text().splitlines()
        self.assertEqual(len({line.split()[-1] for line in maps if "libCorvale" in line}), 1)

    def test_without_numpy(self) -> None:
        code = ("import sys; sys.modules['numpy'] = None; import corvale\n"
                "assert corvale.num_to_alpha5(100000) == b'A0000'\n"
                "corvale.capi.Corvale().init()\n"
                "corvale.num_to_alpha5([1])\n")
        ran = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True)
        self.assertEqual(ran.returncode, 1)
        self.assertIn("ImportError: corvale: arrays and lists need NumPy", ran.stderr)


if __name__ == "__main__":
    unittest.main()
