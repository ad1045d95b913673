#!/usr/bin/env python3
"""Reads docs/site/pages.txt: which pages the site has, in groups and in order.

    menu.py    prints the pages that Doxygen reads
"""
import pathlib
import re
from typing import NamedTuple

TOP = pathlib.Path(__file__).resolve().parents[2]


class Entry(NamedTuple):
    """A page of the menu: its group, where it comes from, its file in the site, its title in the menu."""

    group: str
    source: str
    file: str
    title: str


def file_of(source):
    """The name of the page's file: that which Doxygen gives it."""
    if "::" in source:
        return f"namespace{source.replace('::', '_1_1')}.html"
    if source.endswith(".html"):
        return pathlib.Path(source).name
    if source.endswith(".md"):
        name = re.match(r"# .*\{#(\w+)\}", (TOP / source).read_text(encoding="utf-8"))
        name = name[1] if name else "md_" + re.sub(r"\W", "_", source.removesuffix(".md"))
        return "index.html" if name == "mainpage" else f"{name}.html"
    return re.sub(r"\.(\w+)$", r"_8\1.html", source.rpartition("/")[2])


def entries():
    """The menu, with the pages that its patterns find."""
    lines = (pathlib.Path(__file__).parent / "pages.txt").read_text(encoding="utf-8").split("\n")
    lines = [line for line in lines if line.strip() and not line.startswith("#")]
    named = {line.split("  ")[2].strip() if line.startswith("    ") else "" for line in lines}
    group, found = "", []
    for line in lines:
        if not line.startswith(" "):
            group = line
            continue
        source, _, title = line.strip().partition("  ")
        sources = [source]
        if "*" in source:
            sources = [str(path.relative_to(TOP)) for path in sorted(TOP.glob(source))]
            sources = [path for path in sources if path not in named]
        found += [Entry(group, path, file_of(path), title) for path in sources]
    return found


if __name__ == "__main__":
    print("\n".join(entry.source for entry in entries() if entry.source.endswith(".md")))
