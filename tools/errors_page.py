#!/usr/bin/env python3
"""Writes docs/errors.md from the catalogue, the registry of generators and the message texts.

    tools/errors_page.py [ROOT]            writes the page
    tools/errors_page.py --check [ROOT]    fails when the page is not what would be written
"""

import difflib
import pathlib
import re
import sys
import tomllib

PAGE = "docs/errors.md"
EXAMPLES = "tests/catalogue/raised.txt"

HEAD = """\
# Errors and warnings

Every identifier, with the text that the shell shows, what it proposes, and a line that raises it;
the tests run these lines. Errors without one come from C++, from another host or from a machine
without memory. `{0}`, `{1}` stand for values of the call. A call that is refused for its arguments
draws nothing and changes nothing.

    > try, RandStream('mt19937ar','Seed',-1); catch e, print(e.identifier), end
    TALVOR:RandStream:create:BadSeed

Errors of the language itself, such as a name that does not exist, begin with `TALVOR:language:`;
they point at their place in the source and are not listed here.

This page is written by `tools/errors_page.py`; the tests fail when it is out of date.

## Errors and warnings of the library
"""

HOST_HEAD = """
## Errors of the embedded host

What the host checks and owns. Another host has texts and identifiers of its own for these.
"""

# What every generator of a family raises under its own name.
FAMILY_KEYS = {
    "Single": ["InvalidParameter", "InvalidState", "MultipleStreams"],
    "Substreams": ["InvalidParameter", "InvalidState", "TooManyStreams",
                   "SubstreamsIndexOutOfRange"],
}
ANY_GENERATOR = "TALVOR:RandStream:*"


def read_catalogue(text):
    """The keys of errors/catalogue.def by path, in the order of first appearance."""
    groups = {}
    rows = re.findall(r"^TV_(COMPONENT_|PLAIN_|)KEY\(([^)]*)\)", text, re.MULTILINE)
    for kind, arguments in rows:
        parts = [part.strip() for part in arguments.split(",")]
        if kind == "PLAIN_":
            path, key = "TALVOR", parts[0]
        else:
            path, key = "TALVOR:" + parts[0].replace("::", ":"), parts[1]
        groups.setdefault(path, []).append(key)
    return groups


def read_warnings(text):
    """The keys in the catalogue's block of warnings."""
    block = re.search(r"^// Warnings\.\n((?:TV_.*\n)+)", text, re.MULTILINE)
    return set(re.findall(r"KEY\([^,]*, (\w+),", block[1]))


def read_generators(text):
    """Name and family of each generator."""
    rows = re.findall(r'^TFL_GENERATOR\((\w+), \w+, "[^"]*", (\w+),', text, re.MULTILINE)
    if not rows:
        sys.exit("no generators found")
    return rows


class Messages:
    """The texts, looked up as the embedded host does it: own rows, then those of `same`."""

    def __init__(self, text, warnings, examples):
        self.examples = read_examples(examples)
        self.tables = tomllib.loads(text)
        self.warnings = warnings

    def rows(self, path):
        table = self.tables.get(path, {})
        inherited = self.rows(table["same"]) if "same" in table else {}
        return inherited | {key: row for key, row in table.items() if key != "same"}

    def row(self, path, key):
        family = path.rpartition(":")[0] + ":*"
        for where in (path, family):
            if key in self.rows(where):
                return self.rows(where)[key]
        sys.exit(f"{path}:{key} has no text")


def cell(text):
    return re.sub(r"([|<*])", r"\\\1", text)


def read_examples(text):
    """Lines that raise errors, by identifier."""
    return dict(re.findall(r"^(TALVOR:\S+)  (.*)$", text, re.MULTILINE))


def code(text):
    return "`" + text.replace("|", "\\|") + "`" if text else "-"


def table(title, path, keys, messages, name):
    """A section: the rows of one path, whose last part is `name`."""
    yield (f"\n### {title}\n\n| Identifier | Text | What would work | For example |\n"
           "|---|---|---|---|\n")
    for key in keys:
        row = messages.row(path, key)
        text, hint = (cell(row.get(part, "").replace("{family}", name))
                      for part in ("text", "hint"))
        mark = "warning: " if key in messages.warnings else ""
        identifier = f"{path.replace('*', name)}:{key}"
        example = code(messages.examples.get(identifier, ""))
        yield f"| `{identifier}` | {mark}{text} | {hint or '-'} | {example} |\n"


def page(root):
    definitions = (root / "errors/catalogue.def").read_text()
    catalogue = read_catalogue(definitions)
    generators = read_generators((root / "tfl_rng/generators.def").read_text())
    messages = Messages((root / "embedded_host/messages.toml").read_text(),
                        read_warnings(definitions), (root / EXAMPLES).read_text())

    yield HEAD
    for path, keys in catalogue.items():
        yield from table(f"`{path}`", path, keys, messages, path.rpartition(":")[2])

    keys = {key: [name for name, family in generators if key in FAMILY_KEYS[family]]
            for family in FAMILY_KEYS.values() for key in family}
    yield from table("Each generator's own", ANY_GENERATOR, keys, messages, "G")
    yield "\nG is the name of the generator:\n\n"
    for key, names in keys.items():
        yield f"- `{key}`: {', '.join(names)}\n"

    yield HOST_HEAD
    for path, rows in messages.tables.items():
        # Paths that share rows belong to the library; not each of them raises every row.
        shared = {key for other, heir in messages.tables.items() if heir.get("same") == path
                  for key in catalogue[other]}
        own = [key for key in rows if key not in shared | {"same"} | set(catalogue.get(path, []))]
        if own and path != ANY_GENERATOR:
            yield from table(f"`{path}`", path, own, messages, path.rpartition(":")[2])


def main(arguments):
    check = "--check" in arguments
    places = [argument for argument in arguments if argument != "--check"]
    root = pathlib.Path(places[0]) if places else pathlib.Path(__file__).resolve().parents[1]
    written, wanted = root / PAGE, "".join(page(root))
    for identifier in read_examples((root / EXAMPLES).read_text()):
        if f"`{identifier}`" not in wanted:
            sys.exit(f"{EXAMPLES}: there is no {identifier}")
    if not check:
        written.write_text(wanted)
        return 0
    found = written.read_text() if written.exists() else ""
    sys.stdout.writelines(difflib.unified_diff(
        found.splitlines(True), wanted.splitlines(True), PAGE, "as it would be written"))
    if found != wanted:
        print(f"{PAGE} is out of date; run tools/errors_page.py")
    return found != wanted


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
