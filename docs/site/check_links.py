#!/usr/bin/env python3
"""Follows every link inside a built site: prints those that lead nowhere, and ends with 1 if there is one.

    check_links.py FOLDER
"""
import html.parser
import pathlib
import re
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    """What a page refers to, and the places in it that can be referred to."""

    def __init__(self, path):
        super().__init__()
        self.links, self.places = [], set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        self.links += [values[name] for name in ("href", "src", "data") if values.get(name)]
        self.places.update(values[name] for name in ("id", "name") if values.get(name))


def links_of_search(path):
    """The sections that the search leads to."""
    return re.findall(r'"url": "([^"]+)"', path.read_text(encoding="utf-8"))


def is_dead(link, page, folder, pages):
    url = urllib.parse.urlsplit(link)
    if url.scheme or url.netloc:
        return False
    target = (page.parent / urllib.parse.unquote(url.path)).resolve() if url.path else page
    if not target.is_file() or folder not in target.parents:
        return True
    return bool(url.fragment) and target in pages and url.fragment not in pages[target].places


def main(folder):
    pages = {path: Page(path) for path in folder.rglob("*.html")}
    links = [(path, link) for path, page in pages.items() for link in page.links]
    links += [(folder / "sections.js", link) for link in links_of_search(folder / "sections.js")]
    dead = [f"{path.name}: {link}" for path, link in links if is_dead(link, path, folder, pages)]
    print("\n".join(dead) if dead else f"{len(pages)} pages, {len(links)} links, none dead")
    return 1 if dead or not pages else 0


sys.exit(main(pathlib.Path(sys.argv[1]).resolve()))
