#!/usr/bin/env python3
"""Checks that every include respects the layers of the source tree.

    tools/check_layers.py [ROOT]

Lists each include that breaks a rule, with the rule, and exits with 1 when there is one.
"""

import pathlib
import re
import sys

# A room may include itself and the rooms of its row.
LAYERS = {
    "tfl_rng": "",
    "host": "tfl_rng",
    "errors": "tfl_rng host",
    "plugin_rng": "tfl_rng host errors",
    "rng": "tfl_rng host errors plugin_rng",
    "vmstate": "tfl_rng host errors plugin_rng rng",
    "builtins": "tfl_rng host errors plugin_rng rng vmstate",
    "embedded_host": "host",
    # Of tfl_rng the integers of 128 bits.
    "language": "tfl_rng host embedded_host",
    # The one place where the library and the embedded host meet.
    "runtime": "tfl_rng host errors plugin_rng rng vmstate builtins embedded_host language",
    # Tests of samples, for the battery and for reports; knows no generator.
    "statistics": "",
    "cpp": "tfl_rng host rng",
    "c": "tfl_rng host rng cpp",
    "golden": "tfl_rng host plugin_rng rng embedded_host language runtime",
    "report": "tfl_rng host rng embedded_host runtime statistics golden",
    "shell": "tfl_rng host rng embedded_host language statistics runtime golden report",
    # The C interface for JavaScript, and the shell in a page.
    "js": "host embedded_host rng cpp c",
    "web": "host embedded_host language shell",
    "python": "tfl_rng host rng vmstate",
    "examples": "host rng runtime cpp c",
    "battery": "tfl_rng host rng embedded_host runtime statistics shell",
    "benchmarks": "*",
    "fuzz": "*",
    "tests": "*",
    # A host of its own sees what any host does; its test sees the library too.
    "tests/second_host": "tfl_rng host vmstate builtins tests",
}

# Third-party headers, and where they may be included: rooms, or single files.
THIRD_PARTY = {
    "boost/": "plugin_rng statistics report benchmarks fuzz tests",
    "fmt/": "embedded_host report shell web benchmarks tests",
    "gmock/": "tests",
    "gtest/": "tests",
    "histedit.h": "shell",
    "hwy/": "tfl_rng rng embedded_host golden web benchmarks tests",
    "numpy/": "python",
    "oneapi/": "plugin_rng/parallel.h tests",
    "pybind11/": "python",
    # The C++ and C interfaces, as installed.
    "tvmathrng/": "cpp c js examples benchmarks tests",
    "tbb/": "plugin_rng/parallel.h benchmarks tests",
    "toml++/": "embedded_host tests",
    "benchmark/": "benchmarks",
}

SOURCES = {".h", ".hpp", ".c", ".cc", ".cpp", ".def", ".inc"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults(root):
    """Yields 'file:line: what is wrong' for every include that breaks a rule."""
    for room in sorted(LAYERS):
        allowed = LAYERS[room].split() + [room]
        for path in sorted((root / room).rglob("*")):
            if path.suffix not in SOURCES:
                continue
            file = path.relative_to(root).as_posix()
            text = path.read_text(encoding="utf-8")
            for match in INCLUDE.finditer(text):
                quoted, included = match[1] == '"', match[2]
                fault = check(root, room, allowed, file, quoted, included)
                if fault:
                    # The match may begin with the blank lines before the directive.
                    line = text.count("\n", 0, match.start(1)) + 1
                    yield f"{file}:{line}: {fault}"


def check(root, room, allowed, file, quoted, included):
    for prefix, places in THIRD_PARTY.items():
        if included.startswith(prefix):
            if not {room, room.split("/")[0], file} & set(places.split()):
                return f"<{included}> may be included in {places} only"
            return None
    # The innermost room.
    target = max((room for room in LAYERS if included.startswith(room + "/")), key=len, default="")
    if target and target not in allowed and "*" not in allowed:
        return f'{room} must not include "{included}": it may see {" ".join(allowed)}'
    if quoted and not (root / included).is_file():
        return f'"{included}" is no file below the root (includes are relative to the root)'
    return None


def strangers(root):
    """Yields folders with sources that have no row in the table."""
    for folder in sorted(root.iterdir()):
        if folder.is_dir() and folder.name not in LAYERS and not folder.name.startswith((".", "build")):
            if folder.name not in {"out", "tools"} and any(
                path.suffix in SOURCES for path in folder.rglob("*")
            ):
                yield f"{folder.name}: has sources but no row in the table of layers"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
    if root.is_file():
        root = root.parent.parent
    found = [*strangers(root), *faults(root)]
    print("\n".join(found) or "layers: all includes respect the layers")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
