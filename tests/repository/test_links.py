"""Links between the documents lead to files and headings that exist."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENTS = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]


def anchors(text):
    """The names by which links reach the headings of a page."""
    headings = re.findall(r"^#+ (.*)$", text, re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading).strip().lower().replace(" ", "-")
            for heading in headings}


def broken_links(document):
    for target in re.findall(r"\]\(([^)\s]+)\)", document.read_text()):
        if "://" in target:
            continue
        name, _, anchor = target.partition("#")
        page = document.parent / name if name else document
        if not page.exists() or anchor and anchor not in anchors(page.read_text()):
            yield f"{document.relative_to(ROOT)}: {target}"


class Links(unittest.TestCase):
    def test_every_link_between_documents_leads_somewhere(self):
        self.assertEqual([link for document in DOCUMENTS for link in broken_links(document)], [])


if __name__ == "__main__":
    unittest.main()
