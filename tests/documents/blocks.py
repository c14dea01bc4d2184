"""The blocks of code of the documents, each of a kind that a test runs.

A fenced block names its kind, an indented one shows it: "> " begins a session at the prompt, "$ " a
command with what it prints, anything else are commands for sh. The man page's displays count too.
"""

import dataclasses
import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md")),
         ROOT / "docs/tvrng.1"]

# Kind: what runs it.
KINDS = {
    "session": "run_blocks.py, at the prompt; the answers are those of the page",
    "console": "run_blocks.py, by sh; the output is that of the page",
    "sh": "run_blocks.py where a line is tvrng's alone, all of it by run_commands.py in a clone",
    "output": "run_commands.py: the end of what the commands before it print",
    "tv": "run_blocks.py, pasted at the prompt",
    "toml": "run_blocks.py, as settings",
    "python": "run_blocks.py, as a session of Python; python/tests for what imports tvmathrng",
    "excerpt": "run_blocks.py: stands in a file that the tests compile",
    "cpp": "documented_examples.py, compiled",
    "c": "documented_examples.py, compiled",
    "cmake": "tests/install, as a project",
    "walkthrough": "the tutorial of CONTRIBUTING.md, played as a whole",
}


@dataclasses.dataclass
class Block:
    page: pathlib.Path
    line: int  # of its first line
    kind: str
    words: list  # behind the kind
    text: str

    @property
    def place(self):
        return f"{self.page.relative_to(ROOT)}:{self.line}"


def man_blocks(page):
    for found in re.finditer(r"^\.Bd -literal\n(.*?)^\.Ed", page.read_text("utf-8"), re.M | re.S):
        text = found[1]
        line = found.string[:found.start(1)].count("\n") + 1
        yield Block(page, line, "toml" if text.startswith("[") else "sh", [], text)


def blocks(page):
    if page.suffix != ".md":
        yield from man_blocks(page)
        return
    lines, start, info, heading = [], 0, None, ""
    after_blank = True
    for number, line in enumerate(page.read_text("utf-8").splitlines() + [""], 1):
        if line.startswith("```"):
            if info is None:
                info, lines, start = line[3:].split() or ["none"], [], number + 1
                continue
            kind, *words = info
            if words[:1] in (["excerpt"], ["walkthrough"]):
                kind = words.pop(0)
            text, info = "\n".join(lines) + "\n", None
        elif info is not None:
            lines.append(line)
            continue
        elif line.startswith("    ") and (lines or after_blank):
            start = start if lines else number
            lines.append(line[4:])
            continue
        elif not line.strip() and lines and number <= len(lines) + start:
            lines.append("")
            after_blank = True
            continue
        else:
            heading = line if line.startswith("#") else heading
            after_blank = not line.strip()
            if not lines:
                continue
            text, words = "\n".join(lines).rstrip() + "\n", []
            kind = {"> ": "session", "$ ": "console"}.get(text[:2], "sh")
            if page.name == "CONTRIBUTING.md" and heading == "## Add a generator":
                kind = "walkthrough"
        lines = []
        yield Block(page, start, kind, words, text)


def all_blocks():
    return [block for page in PAGES for block in blocks(page)]
