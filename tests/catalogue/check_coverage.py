#!/usr/bin/env python3
"""Every key of the catalogue is raised by a test, or the reason why none can stands in unraised.txt.

    check_coverage.py SOURCE_ROOT RECORDER PROGRAM...

Runs the test programs with RECORDER preloaded, which notes what they raise, and compares that with
the catalogue and the registry of generators. Tests that build errors by hand are left out.
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

FAMILY_KEYS = {
    "Single": ["InvalidParameter", "InvalidState", "MultipleStreams"],
    "Substreams": ["InvalidParameter", "InvalidState", "TooManyStreams",
                   "SubstreamsIndexOutOfRange"],
}
BY_HAND = "-Errors.*:*Guard.*/library"


def catalogue(root):
    keys = set()
    text = (root / "errors/catalogue.def").read_text()
    for kind, args in re.findall(r"^TV_(KEY|COMPONENT_KEY|PLAIN_KEY)\(([^)]*)\)", text, re.M):
        parts = [part.strip() for part in args.split(",")][:-1]
        keys.add(":".join(["TALVOR"] + parts).replace("::", ":"))
    text = (root / "tfl_rng/generators.def").read_text()
    for name, family in re.findall(
            r'^TFL_GENERATOR\((\w+), *\w+, *"[^"]*", *(\w+),', text, re.M):
        keys.update(f"TALVOR:RandStream:{name}:{key}" for key in FAMILY_KEYS[family])
    return keys


def raised_by(programs, recorder):
    with tempfile.TemporaryDirectory() as folder:
        record = Path(folder) / "raised"
        for program in programs:
            subprocess.run([program, "--gtest_brief=1", f"--gtest_filter={BY_HAND}"], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                           env=os.environ | {"LD_PRELOAD": recorder,
                                             "RECORD_MESSAGES": str(record)})
        return set(record.read_text().split())


def explained(path):
    rows = [line.split(maxsplit=1) for line in path.read_text().splitlines()
            if line and not line.startswith("#")]
    return {row[0] for row in rows if len(row) == 2}


def main():
    root, recorder, programs = Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
    keys = catalogue(root)
    raised = raised_by(programs, recorder)
    reasons = explained(root / "tests/catalogue/unraised.txt")
    missing = sorted(keys - raised - reasons)
    stale = sorted(reasons & raised) + sorted(reasons - keys)
    print(f"{len(keys)} keys, {len(keys & raised)} raised by tests, {len(reasons)} explained")
    for key in missing:
        print(f"raised by no test: {key}")
    for key in stale:
        print(f"raised or gone, take it out of unraised.txt: {key}")
    return 1 if missing or stale else 0


if __name__ == "__main__":
    sys.exit(main())
