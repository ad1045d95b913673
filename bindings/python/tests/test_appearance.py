"""How the package looks to Python's own tools: help, inspect, pickle, star imports, metadata.

Run against the installed package, not in the folder of its sources.
"""

from __future__ import annotations

import importlib.metadata
import inspect
import pathlib
import pickle
import pydoc
import subprocess
import sys
import sysconfig
import tempfile
import unittest

import corvale
from corvale import _arrays


class Appearance(unittest.TestCase):
    def test_every_procedure_has_a_signature(self) -> None:
        for row in _arrays._TABLE:
            parameters = inspect.signature(getattr(corvale, row["name"])).parameters
            free = ["width"] if row["free_width"] else []
            self.assertEqual(list(parameters), [*row["arguments"], *free, "out", "threads"])
            self.assertIsNone(parameters["out"].default)
            self.assertEqual(parameters["threads"].default, 1)
            self.assertEqual(parameters["out"].kind, inspect.Parameter.KEYWORD_ONLY)
        self.assertEqual(str(inspect.signature(corvale.isort)), "(values, order=1, *, out=None)")

    def test_help_shows_a_function_of_the_package(self) -> None:
        shown = pydoc.plain(pydoc.render_doc(corvale.cholesky))
        self.assertIn("built-in function cholesky in module corvale\n\ncholesky(a, b, *, out=None, threads=1)\n", shown)
        self.assertIn("GenFunctions::Cholesky", shown)
        self.assertNotIn("object", shown)

    def test_all_names_what_is_there(self) -> None:
        self.assertEqual(sorted(corvale.__all__), sorted(name for name in dir(corvale)
                                                         if not name.startswith("_") and name != "findings"))
        self.assertLessEqual({row["name"] for row in _arrays._TABLE}, set(corvale.__all__))
        for name in _arrays.__all__:
            self.assertIs(pickle.loads(pickle.dumps(getattr(corvale, name))), getattr(corvale, name))

    def test_metadata_is_that_of_the_package(self) -> None:
        self.assertEqual(importlib.metadata.version("corvale"), corvale.__version__)
        found = importlib.metadata.metadata("corvale")
        self.assertEqual((found["Name"], found["Requires-Python"]), ("corvale", ">=3.9"))
        self.assertEqual(found["Summary"], "Foundation library for orbital analysis, over arrays")

    def test_the_program_is_installed(self) -> None:
        program = f"{sysconfig.get_path('scripts')}/corvale"
        for command in ([program], [sys.executable, "-m", "corvale"]):
            said = subprocess.run([*command, "alpha5", "100000"], capture_output=True, text=True)
            self.assertEqual((said.returncode, said.stdout, said.stderr), (0, "A0000\n", ""))
            self.assertEqual(subprocess.run([*command, "load", "no such file"], capture_output=True).returncode, 2)

    def test_findings_are_objects(self) -> None:
        with tempfile.TemporaryDirectory() as folder:
            good, bad = pathlib.Path(folder, "good.inp"), pathlib.Path(folder, "-bad.inp")
            good.write_text("QZ_DMA_ON\n")
            bad.write_text("* two\n QZ_DMA_ON\nQZ_MOIC 1 x\n")
            self.assertEqual(corvale.check(), [])
            self.assertEqual(corvale.check(good), [])
            first, second = corvale.check(good, bad)
            self.assertEqual(first[:5], (str(bad), 2, 2, 9, "not-in-column-1"))
            self.assertEqual((second.line, second.column, second.code), (3, 11, "not-a-number"))
            self.assertTrue(str(second).startswith(f"{bad}:3:11: QZ_MOIC value 2"))
            with self.assertRaises(OSError) as caught:
                corvale.check(good, f"{folder}/none")
            self.assertEqual(caught.exception.filename, f"{folder}/none")


if __name__ == "__main__":
    unittest.main()
