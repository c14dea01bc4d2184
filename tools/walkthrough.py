#!/usr/bin/env python3
"""Plays the tutorial of CONTRIBUTING.md, "Add a generator", in a copy of the tree.

    tools/walkthrough.py [TREE]

The copy, in out/walkthrough or TREE, is made of what git knows of the work tree; its build tree is
kept from one run to the next. Of the indented blocks of the page, those that begin with a comment
that names a file are written to it: a new file, an addition at the end, or, where the comment goes on
with "below TEXT", behind the last line that begins with TEXT. Lines that begin with "$" are commands.
"""

import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
HEADING = "## Add a generator"
PLACE = re.compile(r"(?://|#) ([\w./]+)(?: below (.+))?")


def blocks(page):
    """The blocks of the tutorial, without their indentation. A place begins a block of its own."""
    text = page[page.index(HEADING):]
    for block in re.findall(r"(?:^    .*\n|^\n(?=\n*    ))+", text, re.MULTILINE):
        lines = [line[4:] for line in block.strip("\n").split("\n")]
        starts = [0] + [i for i, line in enumerate(lines) if i and PLACE.fullmatch(line)]
        for start, end in zip(starts, starts[1:] + [len(lines)]):
            yield "\n".join(lines[start:end]).rstrip("\n") + "\n"


def write(tree, place, text):
    file, below = place.groups()
    path = tree / file
    if below is None:
        with path.open("a", encoding="utf-8") as out:
            out.write(text)
        return
    lines = path.read_text("utf-8").splitlines(keepends=True)
    at = max(i for i, line in enumerate(lines) if line.startswith(below))
    path.write_text("".join(lines[:at + 1] + [text] + lines[at + 1:]), "utf-8")


def copy_tree(tree):
    """Files that are as they were keep their times, so that only what changed is built again."""
    known = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others",
                            "--exclude-standard"], check=True, stdout=subprocess.PIPE, text=True)
    files = {name for name in known.stdout.split("\0") if name and (ROOT / name).exists()}
    if tree.exists():
        for path in tree.rglob("*"):
            name = path.relative_to(tree).as_posix()
            if path.is_file() and name not in files and not name.startswith(("build/", "out/")):
                path.unlink()
    for name in files:
        to = tree / name
        if to.exists() and to.read_bytes() == (ROOT / name).read_bytes():
            continue
        to.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(ROOT / name, to)
        to.touch()


def main():
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ROOT / "out/walkthrough").resolve()
    copy_tree(tree)
    for block in blocks((ROOT / "CONTRIBUTING.md").read_text("utf-8")):
        first, _, rest = block.partition("\n")
        if place := PLACE.fullmatch(first):
            print(f"writes {place[1]}", flush=True)
            write(tree, place, rest)
            continue
        for line in block.splitlines():
            if not line.startswith("$ "):
                raise SystemExit(f"walkthrough: a block that is no file and no command: {line}")
            print(line, flush=True)
            subprocess.run(line[2:], shell=True, check=True, cwd=tree)


if __name__ == "__main__":
    main()
