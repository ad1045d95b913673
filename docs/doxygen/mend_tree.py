#!/usr/bin/env python3
"""Sets right the tree beside the pages: Doxygen 1.9.4 lists the procedures of a namespace below their header
with places on the header's page, but describes them on the namespace's.

    mend_tree.py FOLDER
"""
import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1])
described = {}
for page in folder.glob("namespace*.html"):
    for place in re.findall(r'id="(a[0-9a-f]{32})"', page.read_text(encoding="utf-8")):
        described[place] = f"{page.name}#{place}"

for data in [*folder.glob("*_8hpp.js"), *folder.glob("navtreeindex*.js")]:
    old = data.read_text(encoding="utf-8")
    new = re.sub(r"\w+_8hpp\.html#(a[0-9a-f]{32})", lambda link: described.get(link[1], link[0]), old)
    data.write_text(new, encoding="utf-8")
