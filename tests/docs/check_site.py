"""Fails for every dead link of the site, and for every function whose entry lacks links.

usage: check_site.py SITE HEADER...

Each function of the headers links an example that uses it, its RPCs and their messages.
"""

import re
import sys
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote

SITE = Path(sys.argv[1]).resolve()


class Page(HTMLParser):
    """Anchors and links of a page."""

    def __init__(self, file: Path) -> None:
        super().__init__()
        self.anchors = set()
        self.links = []
        self.feed(file.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name == "id" or (name == "name" and tag == "a"):
                self.anchors.add(value)
            elif name in ("href", "src") and value:
                self.links.append(value)


def links_of_scripts(file: Path):
    """The tree and the search find pages by strings in scripts."""
    return re.findall(r"[\"']((?:\.\./)?[\w-]+\.html(?:#[\w-]+)?)[\"']", file.read_text(encoding="utf-8"))


def dead_links():
    pages = {file: Page(file) for file in SITE.rglob("*.html")}
    found = [(file, link) for file, page in pages.items() for link in page.links]
    found += [(file, link) for file in SITE.rglob("*.js") for link in links_of_scripts(file)]
    count = 0
    for file, link in found:
        if re.match(r"[a-z]+:", link):
            if not re.match(r"(https?|mailto|javascript|data):", link):
                yield f"{file.name}: {link}"
            continue
        path, _, anchor = unquote(link).partition("#")
        # Links of the tree are relative to the root, those of pages and the search to their folder.
        target = (file.parent / path).resolve() if path else file
        count += 1
        if not target.exists():
            yield f"{file.name}: no file: {link}"
        elif anchor and target.suffix == ".html" and anchor not in pages[target].anchors:
            yield f"{file.name}: no anchor: {link}"
    print(f"{len(pages)} pages, {count} links")
    if count < 1000:
        yield "this is not the site"


def entries(header: Path):
    """The entry of each function of a header, as HTML."""
    text = header.read_text(encoding="utf-8")
    file = SITE / (header.name.replace("_", "__").replace(".h", "_8h.html"))
    owner = re.search(r"^class .* (\w+) \{", text, re.M)
    if owner:
        file = SITE / f"class{owner[1]}.html"
    html = file.read_text(encoding="utf-8")
    for name in re.findall(r"^ *(?:static bool|int) (\w+)\(", text, re.M):
        yield name, re.search(rf'</span>{name}\(\)</h2>(.*?)(?=<h2 class="memtitle"|\Z)', html, re.S)[1]


def incomplete_entries(header: Path):
    for name, html in entries(header):
        print(f"{header.name}: {name}")
        if not re.search(r'href="\w+_8cc?-example\.html', html):
            yield f"{name}: no example"
        if not re.search(r'href="classostrevan_1_1\w+\.html#', html):
            yield f"{name}: no RPC"
        if not re.search(r'href="structostrevan_1_1\w+\.html"', html):
            yield f"{name}: no message"


wrong = list(dead_links())
for argument in sys.argv[2:]:
    wrong += incomplete_entries(Path(argument))
print(*wrong, sep="\n")
sys.exit(bool(wrong))
