#!/usr/bin/env python3
"""Compares the symbols that a shared library exports with a list.

    check_exported_symbols.py NM LIBRARY LIST

The list holds one demangled name a line; "#" starts a comment line. What templates of the standard
library and Boost leave behind, run-time type information and a sanitizer's own marks are no part of
the interface and are passed over. Exits with 1 and tells the differences when there are any.
"""

import re
import subprocess
import sys

# A template's name has the type of its result, or of the variable, before it.
PASSED_OVER = re.compile(
    r"((unsigned )?\w+ )?(std|boost)::|typeinfo |vtable |__odr_asan|__asan|guard variable")


def exported(nm, library):
    lines = subprocess.run([nm, "-D", "--defined-only", "-C", library], check=True, text=True,
                           capture_output=True).stdout.splitlines()
    names = {line.split(maxsplit=2)[2] for line in lines}
    return {name for name in names if not PASSED_OVER.match(name)}


def listed(path):
    with open(path, encoding="utf-8") as file:
        return {line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")}


def main():
    nm, library, path = sys.argv[1:]
    found, expected = exported(nm, library), listed(path)
    for name in sorted(found - expected):
        print(f"exported, but not listed: {name}")
    for name in sorted(expected - found):
        print(f"listed, but not exported: {name}")
    return 1 if found != expected else 0


if __name__ == "__main__":
    sys.exit(main())
