#!/usr/bin/env python3
"""The documents as the site has them, and a check of what the site became.

    site_pages.py FOLDER             writes the pages: README.md as index.md, links between pages and
                                     to files of the tree as they are on the site
    site_pages.py --check SITE       every link within the site leads to a page and a heading that
                                     are there, and nothing is loaded from another address
"""

import html.parser
import pathlib
import posixpath
import re
import shutil
import sys
import urllib.parse

ROOT = pathlib.Path(__file__).resolve().parents[1]
NAMES = {"README.md": "index.md", "CONTRIBUTING.md": "contributing.md", "CHANGELOG.md": "changes.md"}
REFERENCE = """# Reference of C++ and C

[The reference pages](reference/index.html), made from the headers: every class and function of the
C++ interface, every function of the C interface.
"""


def place(path):
    """Where a file of the tree is on the site."""
    return NAMES.get(path) or path.removeprefix("docs/")


def write_pages(folder):
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for page in [*NAMES, *(f"docs/{file.name}" for file in (ROOT / "docs").glob("*.md"))]:
        def link(found):
            target, mark, heading = found[1].partition("#")
            if "://" in target or not target:
                return found[0]
            path = posixpath.normpath(posixpath.join(posixpath.dirname(page), target))
            if not path.endswith(".md"):
                copy = folder / place(path)
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / path, copy)
            return f"]({place(path)}{mark}{heading})"

        text = (ROOT / page).read_text("utf-8")
        text = re.sub(r"\]\(([^)\s]+)\)", link, text)
        text = re.sub(r"^```(\w+) .*$", r"```\1", text, flags=re.MULTILINE)
        (folder / place(page)).write_text(text, "utf-8")
    navigation = (ROOT / "docs/site.yml").read_text("utf-8")
    for file in folder.glob("*.md"):
        if f": {file.name}\n" not in navigation:
            sys.exit(f"docs/site.yml does not lead to {file.name}")
    (folder / "reference.md").write_text(REFERENCE, "utf-8")


class Page(html.parser.HTMLParser):
    """Links, what is loaded, and the names that links can reach."""

    def __init__(self, text):
        super().__init__()
        self.links, self.loaded, self.names = [], [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.names.update(values[key] for key in ("id", "name") if values.get(key))
        if tag == "a" and values.get("href"):
            self.links.append(values["href"])
        loads = tag == "link" and values.get("rel") in ("stylesheet", "icon", "preload")
        if (value := values.get("href") if loads else values.get("src")):
            self.loaded.append(value)


def check(site):
    # The page of a missing address names everything from the root.
    pages = {file: Page(file.read_text("utf-8")) for file in site.rglob("*.html")
             if file.name != "404.html"}
    faults = []
    for file, page in pages.items():
        where = file.relative_to(site)
        faults += [f"{where}: loads {url}" for url in page.loaded if re.match(r"(\w+:)?//", url)]
        for url in page.links + page.loaded:
            address = urllib.parse.urlsplit(url)
            if address.scheme or address.netloc:
                continue
            path = urllib.parse.unquote(address.path)
            target = (file.parent / path).resolve() if path else file
            target = target / "index.html" if target.is_dir() else target
            if not target.exists():
                faults.append(f"{where}: {url} is nowhere")
            elif address.fragment and target in pages and "reference" not in where.parts and \
                    urllib.parse.unquote(address.fragment) not in pages[target].names:
                faults.append(f"{where}: {url} has no such heading")
    print(*faults, sep="\n", end="\n" if faults else "")
    print(f"{len(pages)} pages, {sum(len(page.links) for page in pages.values())} links")
    return 1 if faults else 0


if __name__ == "__main__":
    if sys.argv[1] == "--check":
        sys.exit(check(pathlib.Path(sys.argv[2]).resolve()))
    write_pages(pathlib.Path(sys.argv[1]))
