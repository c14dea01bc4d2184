#!/usr/bin/env python3
"""Draws docs/speed.svg, our fills of doubles beside those of other libraries, from the tables of
docs/performance.md; run it again when they change.

    tools/speed_picture.py            writes the picture
    tools/speed_picture.py --check    fails when it is not what would be written
"""

import pathlib
import re
import sys
from html import escape

ROOT = pathlib.Path(__file__).resolve().parents[1]
PICTURE = ROOT / "docs/speed.svg"
TABLES = {"Uniform double": "Uniform doubles", "Normal, Ziggurat": "Normal doubles"}
COLUMN = "1,000,000"
LEFT, WIDTH, BAR, GAP = 200, 720, 13, 8

HEAD = """\
<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" font-family="sans-serif" font-size="12">
<title>Nanoseconds a value, in requests of a million</title>
<style>
text {{ fill: #24292f }} .ours {{ fill: #0b6e4f }} .peer {{ fill: #a9b1ba }} .quiet {{ fill: #57606a }}
@media (prefers-color-scheme: dark) {{
  text {{ fill: #e6edf3 }} .ours {{ fill: #3fb68b }} .peer {{ fill: #58616b }} .quiet {{ fill: #9aa4ae }}
}}
</style>
"""


def table(text, heading):
    """Names and nanoseconds of one table; ours are bold there."""
    section = re.search(rf"^### {heading}\n+(\|.*?)\n\n", text, re.MULTILINE | re.DOTALL)[1]
    head, _, *rows = ([cell.strip() for cell in line.strip("|").split("|")]
                      for line in section.splitlines())
    column = head.index(COLUMN)
    return [(row[0], float(row[column].split()[0])) for row in rows]


def groups(rows):
    """Each generator of ours that has peers below it, with them. Peers of the whole table, which
    name their engine behind a comma, go to the first."""
    found = []
    for name, value in rows:
        if name.startswith("**"):
            found.append([(name.strip("*"), value)])
        elif found and name != "memset":
            found[0 if ", " in name else -1].append((name, value))
    return [group for group in found if len(group) > 1]


def picture(text):
    out, y = "", 20
    for heading, title in TABLES.items():
        shown = groups(table(text, heading))
        scale = (WIDTH - LEFT - 60) / max(value for group in shown for _, value in group)
        out += f'<text x="0" y="{y}" font-weight="bold">{title}: nanoseconds a value</text>\n'
        y += 12
        for group in shown:
            for number, (name, value) in enumerate(group):
                kind, weight = ("peer", "") if number else ("ours", ' font-weight="bold"')
                length = max(value * scale, 1)
                out += (f'<text x="{LEFT - 8}" y="{y + 10}" text-anchor="end"{weight}>{escape(name)}</text>'
                        f'<rect class="{kind}" x="{LEFT}" y="{y}" width="{length:.1f}" height="{BAR - 2}"/>'
                        f'<text class="quiet" x="{LEFT + length + 5:.1f}" y="{y + 10}">{value:g}</text>\n')
                y += BAR + 2
            y += GAP
        y += 20
    return HEAD.format(width=WIDTH, height=y - 20) + out + "</svg>\n"


def main(arguments):
    wanted = picture((ROOT / "docs/performance.md").read_text("utf-8"))
    if "--check" not in arguments:
        PICTURE.write_text(wanted, "utf-8")
        return 0
    if PICTURE.read_text("utf-8") == wanted:
        return 0
    print("docs/speed.svg is out of date; run tools/speed_picture.py")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
