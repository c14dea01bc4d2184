#!/usr/bin/env python3
"""Runs the blocks of commands of the documents as a newcomer pastes them: page by page, in order,
in a fresh clone of the last commit, with a home folder of its own.

    run_commands.py [--hours] [PAGE...]

Commands that take hours, or are checks that a step of tools/check.sh runs anyway, are left to
--hours; they are named at the end. Packages are installed, so that this wants a machine to spare:
tools/fresh.sh makes one.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

from blocks import PAGES, ROOT, blocks

HOURS = {".ci/run", "tools/check.sh", "tools/bench.sh", "tools/battery.sh", "tools/fuzz.sh",
         "tools/report_seeds.sh", "tools/fresh.sh"}
MARK = "\x1e"


def script_of(page, hours, left_out):
    """Commands that a shell runs for a page, a mark before each block."""
    script = "set -eo pipefail\n"
    for block in blocks(page):
        if block.kind != "sh":
            continue
        script += f"printf '{MARK}{block.place}\\n'\n"
        for line in block.text.splitlines():
            if line.split()[:1] and line.split()[0] in HOURS and not hours:
                left_out.append(line.split("  ")[0])
            else:
                script += re.sub(r"\bURL\b", str(ROOT), line) + "\n"
    return script


def outputs_are_told(page, printed):
    """Each block of output is the end of what the commands before it printed."""
    before, good = "", True
    for block in blocks(page):
        if block.kind == "sh":
            before = block.place
        elif block.kind == "output" and not printed.get(before, "").endswith(block.text):
            print(f"{block.place}: printed\n{printed.get(before)}")
            good = False
    return good


def run_page(page, clone, environment, hours, left_out):
    script = script_of(page, hours, left_out)
    if MARK not in script:
        return None
    start = time.monotonic()
    done = subprocess.run(["bash", "-c", script], cwd=clone, env=environment, text=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    parts = (part.split("\n", 1) for part in done.stdout.split(MARK)[1:])
    printed = {place: text for place, text in parts}
    if done.returncode != 0:
        place = list(printed)[-1]
        print(f"{place}: failed\n{printed[place]}{done.stderr[-4000:]}")
    good = done.returncode == 0 and outputs_are_told(page, printed)
    print(f"{page.relative_to(ROOT)!s:26} {len(printed):3} blocks {'ok' if good else 'FAILED':7}"
          f"{time.monotonic() - start:6.0f} s", flush=True)
    return good


def main(arguments):
    hours = "--hours" in arguments
    pages = [pathlib.Path(a).resolve() for a in arguments if a != "--hours"] or PAGES
    left_out = []
    with tempfile.TemporaryDirectory() as scratch:
        home, clone = pathlib.Path(scratch, "home"), pathlib.Path(scratch, "clone")
        home.mkdir()
        subprocess.run(["git", "clone", "--quiet", ROOT, clone], check=True)
        environment = dict(os.environ, HOME=str(home), OMPI_ALLOW_RUN_AS_ROOT="1",
                           OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1",
                           PATH=f"{home}/tvmathrng/bin:{os.environ['PATH']}")
        environment.pop("TVRNG_SETTINGS", None)
        results = [run_page(page, clone, environment, hours, left_out) for page in pages]
    for command in dict.fromkeys(left_out):
        print(f"not run: {command}")
    return 1 if False in results else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
