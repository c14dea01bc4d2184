#!/usr/bin/env python3
"""Compares golden/golden_table.txt with what a build draws, and writes it when told to.

    tools/golden_table.py [TVRNG]                    tells the differences; fails when there are any
    tools/golden_table.py [TVRNG] --write            adds new rows, takes out those of cases that are
                                                     gone; refuses when a row has changed
    tools/golden_table.py [TVRNG] --change REASON    the same, and takes over changed rows: users get
                                                     other numbers than before. Raises the sequence
                                                     version, and keeps the reason in the table

TVRNG is build/bin/tvrng unless told otherwise. What is written are the hashes of the default
instruction set and number of threads: build again and run `tvrng doctor`, which holds all others
against them. That the numbers are right is the matter of the known-answer tests, not of the table.
"""

import argparse
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
TABLE = ROOT / "golden/golden_table.txt"

HEAD = """\
# Hashes of what every generator draws, on every machine: generator, case (golden/cases.cpp), FNV-1a
# of the bits. Written by tools/golden_table.py, never by hand. A changed row means that users get
# other numbers from the same seed: it raises the sequence version and stands below with its reason.
"""


def read(text):
    """History (lines "# version reason"), sequence version, and rows by (generator, case)."""
    history, version, rows = [], 1, {}
    for line in text.splitlines():
        words = line.split()
        if line.startswith("# sequence-version "):
            history.append(line)
        elif words[:1] == ["sequence-version"]:
            version = int(words[1])
        elif len(words) == 3 and not line.startswith("#"):
            rows[words[0], words[1]] = words[2]
    return history, version, rows


def write(history, version, rows):
    lines = [HEAD, *(line + "\n" for line in history), f"sequence-version {version}\n"]
    lines += [f"{generator} {case} {value}\n" for (generator, case), value in rows.items()]
    return "".join(lines)


def compare(old, new):
    added = [row for row in new if row not in old]
    gone = [row for row in old if row not in new]
    changed = [row for row in new if row in old and old[row] != new[row]]
    return added, gone, changed


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tvrng", nargs="?", default=str(ROOT / "build/bin/tvrng"))
    parser.add_argument("--write", action="store_true")
    parser.add_argument("--change", metavar="REASON")
    parser.add_argument("--file", type=pathlib.Path, default=TABLE, help=argparse.SUPPRESS)
    options = parser.parse_args(arguments)

    history, version, old = read(options.file.read_text() if options.file.exists() else "")
    drawn = subprocess.run([options.tvrng, "doctor", "--table"], check=True, text=True,
                           capture_output=True).stdout
    new = read(drawn)[2]
    added, gone, changed = compare(old, new)
    for what, rows in (("new", added), ("gone", gone), ("CHANGED", changed)):
        for generator, case in rows:
            print(f"{what}: {generator} {case}")
    print(f"{len(new)} rows: {len(added)} new, {len(gone)} gone, {len(changed)} changed")
    if not added and not gone and not changed:
        return 0
    if options.change is None and (changed or not options.write):
        if options.write:
            print("Nothing written: --change REASON takes over changed rows.")
        return 1
    if changed:
        version += 1
        history.append(f"# sequence-version {version}: {options.change}")
    options.file.write_text(write(history, version, new))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
