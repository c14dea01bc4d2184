#!/usr/bin/env python3
"""The layouts in a report of abidw as text, for tools/abi.sh.

    tools/abi_digest.py REPORT

Lists each class and enumeration that a header of the interface defines: size, data
members with offset in bits and type, virtual functions in the order of their table, enumerators.
Which functions are exported stands in tests/exported_symbols/tvmathrng.txt.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree

HEADERS = re.compile(r"(?:.*/)?(?:host/\w+|plugin_rng/interfaces|rng/randstream)\.h")


def type_names(tree):
    """The spelling of every type by its id."""
    elements = {element.get("id"): element for element in tree.iter() if element.get("id")}

    def name(identifier):
        element = elements.get(identifier)
        if element is None:
            return "..."
        kind, inner = element.tag, element.get("type-id")
        if kind == "pointer-type-def":
            return name(inner) + "*"
        if kind == "reference-type-def":
            return name(inner) + ("&" if element.get("kind") == "lvalue" else "&&")
        if kind == "qualified-type-def":
            words = [word for word in ("const", "volatile") if element.get(word) == "yes"]
            return " ".join([name(inner), *words])
        if kind == "array-type-def":
            bounds = [part.get("length") for part in element.findall("subrange")]
            return name(inner) + "".join(f"[{bound}]" for bound in bounds)
        if kind == "function-type":
            parameters = ", ".join(name(p.get("type-id")) for p in element.findall("parameter"))
            result = element.find("return")
            return f"{name(result.get('type-id')) if result is not None else 'void'}({parameters})"
        return element.get("name") or kind

    return name


def digest(tree):
    name = type_names(tree)
    entries = {}

    def visit(element, scope):
        inner = scope
        if element.tag in ("namespace-decl", "class-decl", "union-decl", "enum-decl"):
            inner = [*scope, element.get("name") or "(unnamed)"]
        if element.tag in ("class-decl", "union-decl", "enum-decl"):
            whole = element.get("is-declaration-only") != "yes"
            # Paths are relative to the build tree, or whole, as compiler and cache will have it.
            if whole and HEADERS.fullmatch(element.get("filepath") or "") and "<" not in inner[-1]:
                entries["::".join(inner)] = list(describe(element, name))
        for child in element:
            visit(child, inner)

    visit(tree, [])
    return entries


def describe(element, name):
    if element.tag == "enum-decl":
        yield "enum"
        for value in element.findall("enumerator"):
            yield f"  {value.get('name')} = {value.get('value')}"
        return
    yield f"{element.tag.removesuffix('-decl')} of {element.get('size-in-bits', 0)} bits"
    for base in element.findall("base-class"):
        virtual = "virtual " if base.get("is-virtual") == "yes" else ""
        yield f"  base {virtual}{name(base.get('type-id'))}"
    for member in element.findall("data-member"):
        variable = member.find("var-decl")
        if variable is not None and member.get("static") != "yes":
            yield (f"  {member.get('layout-offset-in-bits', 0):>5} {variable.get('name')}: "
                   f"{name(variable.get('type-id'))}")
    virtual = {}
    for member in element.findall("member-function"):
        if member.get("vtable-offset") is not None:
            function = member.find("function-decl")
            virtual.setdefault(int(member.get("vtable-offset")), function.get("name"))
    for place, function in sorted(virtual.items()):
        yield f"  virtual {place} {function}"


def main():
    entries = digest(ElementTree.parse(sys.argv[1]).getroot())
    for entry in sorted(entries):
        first, *rest = entries[entry]
        print(f"{entry}: {first}", *rest, sep="\n")


if __name__ == "__main__":
    main()
