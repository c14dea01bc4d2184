#!/usr/bin/env python3
"""Every key of the catalogue is raised by a test, or the reason why none can stands in unraised.txt.

    check_coverage.py SOURCE_ROOT RECORDER PROGRAM...

Runs the test programs with RECORDER preloaded, which notes what they raise, and compares that with
the catalogue and the registry of generators. Tests that build errors by hand are left out.
"""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
sys.dont_write_bytecode = True
import errors_page  # noqa: E402

BY_HAND = "-Errors.*:*Guard.*/library"


def catalogue(root):
    groups = errors_page.read_catalogue((root / "errors/catalogue.def").read_text())
    keys = {f"{path}:{key}" for path, group in groups.items() for key in group}
    for name, family in errors_page.read_generators(
            (root / "tfl_rng/generators.def").read_text()):
        keys.update(f"TALVOR:RandStream:{name}:{key}" for key in errors_page.FAMILY_KEYS[family])
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
