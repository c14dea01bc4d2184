#!/usr/bin/env python3
"""Compares the symbols that a shared library exports with a list.

    check.py NM LIBRARY LIST

The list holds one demangled name a line; "#" starts a comment line. A line with <core> stands for
one line for each core class of the registry, with <stream core> for those with substreams; "*" at
its end is any text, and not nothing. What templates of the standard library and Boost leave behind,
run-time type information and a sanitizer's own marks are no part of the interface and are passed
over. Exits with 1 and tells the differences when there are any.
"""

import pathlib
import re
import subprocess
import sys

REGISTRY = pathlib.Path(__file__).resolve().parents[2] / "tfl_rng/generators.def"
ROW = re.compile(r'^TFL_GENERATOR\(\w+,\s*(\w+),\s*"[^"]*",\s*(\w+),', re.MULTILINE)

# By the names before demangling: those of a template's instances begin with the type of the result.
PASSED_OVER = re.compile(
    r"_ZZ?N?[KVRO]*(S[tabsiod]|5boost|9__gnu_cxx)|_ZT[ISV]|_ZGV|__odr_asan|__asan")


def symbols(nm, library, *options):
    lines = subprocess.run([nm, "-D", "--defined-only", *options, library], check=True, text=True,
                           capture_output=True).stdout.splitlines()
    return [line.split(maxsplit=2)[2] for line in lines]


def exported(nm, library):
    pairs = zip(symbols(nm, library), symbols(nm, library, "-C"), strict=True)
    return {name for mangled, name in pairs if not PASSED_OVER.match(mangled)}


def listed(text, rows):
    """Names and patterns: rows are (core class, family)."""
    cores = {"<core>": [core for core, _ in rows],
             "<stream core>": [core for core, family in rows if family == "Substreams"]}
    for line in text.splitlines():
        if not line or line.startswith("#"):
            continue
        placeholder = next((p for p in cores if p in line), None)
        if placeholder:
            yield from (line.replace(placeholder, core) for core in cores[placeholder])
        else:
            yield line


def differences(found, expected):
    """Names found that are not expected, and those expected that are not found."""
    exact = {name for name in expected if not name.endswith("*")}
    starts = {name[:-1] for name in expected if name.endswith("*")}
    extra = {name for name in found - exact if not name.startswith(tuple(starts))}
    missing = exact - found
    missing |= {s + "*" for s in starts if not any(name.startswith(s) for name in found)}
    return sorted(extra), sorted(missing)


def main():
    nm, library, path = sys.argv[1:]
    expected = set(listed(pathlib.Path(path).read_text(), ROW.findall(REGISTRY.read_text())))
    extra, missing = differences(exported(nm, library), expected)
    for name in extra:
        print(f"exported, but not listed: {name}")
    for name in missing:
        print(f"listed, but not exported: {name}")
    return 1 if extra or missing else 0


if __name__ == "__main__":
    sys.exit(main())
