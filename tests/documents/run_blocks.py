#!/usr/bin/env python3
"""Runs the blocks of the documents that take no longer than a test may.

    run_blocks.py TVRNG            all of them; fails for a block of no kind, too
    run_blocks.py --list           the blocks by kind, and what runs each kind
    run_blocks.py --python PAGE... the Python blocks of these pages, where tvmathrng can be imported
"""

import collections
import doctest
import pathlib
import re
import sys

from blocks import KINDS, PAGES, ROOT, all_blocks, blocks

sys.path[:0] = [str(ROOT / "tests/shell"), str(ROOT / "tools")]
import errors_page
from run_transcripts import Runner, report

# What a line of sh may begin with, beside the programs of this tree.
PROGRAMS = {"apt-get", "cd", "cmake", "echo", "export", "g++", "gcc", "git", "ldd", "man", "mpirun",
            "LD_LIBRARY_PATH", "PYTHONPATH", "python3", "tvrng"}


def unknown_program(block):
    for line in block.text.replace("\\\n", " ").splitlines():
        word = re.match(r"[^\s=]*", line)[0]
        comment = line.lstrip().startswith("#") or not line.strip()
        if not (comment or word in PROGRAMS or (ROOT / word).is_file() or
                word.startswith("./work_items") or
                word.startswith(("build/", "~/tvmathrng/"))):
            return f"`{word}` is no command"
    return None


def own(command):
    """A command line as the tests run it: ./run is tvrng that is there already."""
    return re.sub(r"\s+# .*", "", re.sub(r"^\./run\b", "tvrng", command))


def run_sh(runner, block):
    if fault := unknown_program(block):
        print(f"{block.place}: {fault}; a block is of one of the kinds {', '.join(KINDS)}")
        return False
    good = True
    for line in block.text.splitlines():
        if own(line).startswith("tvrng ") or re.search(r"\| tvrng", line):
            output, status = runner.run(["bash", "-o", "pipefail", "-c", own(line)])
            if status != 0:
                print(f"{block.place}: {line}\n{output}[status {status}]")
                good = False
    return good


def run_console(runner, block):
    text = re.sub(r"^\$ \./run\b", "$ tvrng", block.text, flags=re.M)
    return report(block.place, text, runner.commands(text))


def run_tv(runner, block):
    output, status = runner.run([runner.tvrng, "-i"], block.text)
    if status == 0 and "^~" not in output:
        return True
    print(f"{block.place}:\n{output}")
    return False


def run_toml(runner, block):
    settings = pathlib.Path(runner.home.name, "documented.toml")
    settings.write_text(block.text, "utf-8")
    output, status = runner.run(["env", f"TVRNG_SETTINGS={settings}", runner.tvrng, "-e", "rand"])
    if status != 0:
        print(f"{block.place}:\n{output}")
    return status == 0


def run_excerpt(runner, block):
    lines = [line.strip() for line in block.text.splitlines()]
    source = [line.strip() for line in (ROOT / block.words[0]).read_text("utf-8").splitlines()]
    if any(source[at:at + len(lines)] == lines for at in range(len(source))):
        return True
    print(f"{block.place}: stands nowhere in {block.words[0]}")
    return False


def run_python(pages):
    good = True
    for page in pages:
        text = "\n\n".join(block.text for block in blocks(page) if block.kind == "python")
        test = doctest.DocTestParser().get_doctest(text, {}, page.name, str(page), 0)
        good = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(test).failed == 0 and good
    return good


RUN = {"session": lambda runner, block: report(block.place, block.text, runner.session(block.text)),
       "console": run_console, "sh": run_sh, "tv": run_tv, "toml": run_toml, "excerpt": run_excerpt}


def errors_are_raised(runner):
    """Each line of raised.txt raises its error or warning."""
    examples, good = (ROOT / errors_page.EXAMPLES).read_text("utf-8"), True
    for identifier, line in errors_page.read_examples(examples).items():
        command = (["bash", "-c", line[2:]] if line.startswith("$ ") else
                   [runner.tvrng, "-e", line])
        output, _ = runner.run(command)
        if not re.search(rf"\[{identifier.replace(':G:', ':[a-z0-9_]+:')}\]", output):
            print(f"raised.txt: {line} should raise {identifier}\n{output}")
            good = False
    return good


def folders_are_told():
    """The folder map of the README names every folder of the tree, and no other."""
    told = set(re.findall(r"`(\w+)/`", re.search(r"\| Folder \|.*?\n\n", PAGES[0].read_text("utf-8"),
                                                 re.DOTALL)[0].replace("tests/kat/", "")))
    there = {file.parent.name for file in ROOT.glob("*/*")
             if not file.parent.name.startswith(".")} - {"build", "out"}
    if told != there:
        print(f"README.md: the folder map and the tree differ in {sorted(told ^ there)}")
    return told == there


def show_list():
    places = collections.defaultdict(list)
    for block in all_blocks():
        places[block.kind].append(block.place)
    for kind, found in sorted(places.items()):
        print(f"{len(found):4} {kind}: {KINDS.get(kind, 'OF NO KIND')}")
        print(*(f"       {place}" for place in found), sep="\n")


def main(arguments):
    if arguments[0] == "--list":
        show_list()
        return 0
    if arguments[0] == "--python":
        return 0 if run_python([pathlib.Path(page) for page in arguments[1:]]) else 1
    runner = Runner(arguments[0])
    good = folders_are_told()
    good = errors_are_raised(runner) and good
    for block in all_blocks():
        if block.kind not in KINDS:
            print(f"{block.place}: a block of no kind; there are {', '.join(KINDS)}")
            good = False
        elif block.kind in RUN:
            good = RUN[block.kind](runner, block) and good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
