#!/usr/bin/env python3
"""Runs an example in an empty folder with the input files beside it, and compares what it prints.

    compare.py EXPECTED.out COMMAND [ARGUMENT...]          ends with 1, and the difference, if there is one
    compare.py --write EXPECTED.out COMMAND [ARGUMENT...]  writes EXPECTED.out anew
"""
import difflib
import pathlib
import shutil
import subprocess
import sys
import tempfile

words = sys.argv[1:]
is_written = words[0] == "--write"
expected, *command = words[is_written:]
expected = pathlib.Path(expected)
with tempfile.TemporaryDirectory() as folder:
    for name in expected.parent.glob("*.inp"):
        shutil.copy(name, folder)
    run = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                         check=False)
if run.stderr or run.returncode not in (0, 1):
    sys.exit(f"{command[0]}: status {run.returncode}\n{run.stderr}")
if is_written:
    expected.write_text(run.stdout)
difference = list(difflib.unified_diff(expected.read_text().splitlines(), run.stdout.splitlines(),
                                       str(expected), "what it prints", lineterm=""))
if difference:
    print("\n".join(difference))
sys.exit(1 if difference else 0)
