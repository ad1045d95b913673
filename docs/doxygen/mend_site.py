#!/usr/bin/env python3
"""Sets right what Doxygen 1.9.4 makes of the pages of namespaces and headers.

    mend_site.py FOLDER

The tree beside the pages lists the procedures of a namespace below their header too, with places on the
header's page, where they are not described. Titles end in "Namespace Reference", "File Reference".
"""
import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1])
described = {}
for page in folder.glob("*.html"):
    text = page.read_text(encoding="utf-8")
    page.write_text(re.sub(r" (?:Namespace|File|Directory) Reference(?=\s*<)", "", text), encoding="utf-8")
    if page.name.startswith("namespace"):
        for place in re.findall(r'id="(a[0-9a-f]{32})"', text):
            described[place] = f"{page.name}#{place}"

for data in [*folder.glob("*_8hpp.js"), *folder.glob("navtreeindex*.js")]:
    old = data.read_text(encoding="utf-8")
    new = re.sub(r"\w+_8hpp\.html#(a[0-9a-f]{32})", lambda link: described.get(link[1], link[0]), old)
    data.write_text(new, encoding="utf-8")
