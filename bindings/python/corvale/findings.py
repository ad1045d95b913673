"""What the program `corvale check` finds in input files, as objects."""

from __future__ import annotations

import json
import os
import pathlib
import subprocess
from typing import Any, NamedTuple

from corvale.capi import CorvaleFileError, StrPath


class Finding(NamedTuple):
    """Something about a line that the library passes over without a word; `str` shows it as compilers do."""

    file: str
    line: int
    column: int  # counted from 1, as the line is
    length: int
    code: str  # names the kind of finding
    message: str
    help: str  # what to do about it; may be empty

    def __str__(self) -> str:
        return f"{self.file}:{self.line}:{self.column}: {self.message} [{self.code}]"


def check(*files: StrPath) -> list[Finding]:
    """Explains input files and returns the findings, in the order of files and lines. Nothing is loaded.

    CorvaleFileError, an OSError, for a file that cannot be read.
    """
    if not files:
        return []
    program = pathlib.Path(__file__).with_name("corvale")
    names = [os.fspath(file) for file in files]
    # a name that begins with a hyphen is neither an option nor standard input
    shown = [f"./{name}" if name.startswith("-") else name for name in names]
    said = subprocess.run([program, "check", "--json", *shown], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    found = []
    for name, file in zip(names, json.loads(said.stdout)["files"]):
        if "error" in file:
            raise CorvaleFileError(f'"{name}" cannot be read: {file["error"]}', None, name)
        found += [_finding(name, each) for each in file["findings"]]
    return found


def _finding(file: str, found: dict[str, Any]) -> Finding:
    return Finding(file, *(found[field] for field in Finding._fields[1:]))
