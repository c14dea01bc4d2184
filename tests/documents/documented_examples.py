#!/usr/bin/env python3
"""The C++ and C examples of the documentation, as programs.

    documented_examples.py write cpp|c OUTPUT     each block of code becomes a function
    documented_examples.py check cpp|c PROGRAM    the program prints what the blocks say

A line of a block that prints ends with what it prints, as a comment.
"""

import pathlib
import re
import subprocess
import sys

from blocks import all_blocks

PRINTED = re.compile(r"(?:std::cout|printf).*;\s*// (.*)$", re.MULTILINE)
PROLOGUE = {
    "cpp": "#include <tvmathrng/random.h>\n" + "".join(
        f"#include <{name}>\n" for name in ("algorithm", "complex", "cstdint", "iostream", "numeric",
                                           "random", "string", "thread", "utility", "vector")),
    "c": "#include <stdio.h>\n#include <stdlib.h>\n",
}
USING = {"cpp": "  using namespace tvmathrng;\n", "c": ""}


def program(language, examples):
    text, calls = PROLOGUE[language], ""
    for number, block in enumerate(examples):
        lines = block.replace("using namespace tvmathrng;\n", "").splitlines()
        includes = [line for line in lines if line.startswith("#include")]
        body = "\n".join("  " + line for line in lines if line not in includes)
        text += "\n".join(includes) + f"\nstatic void example{number}(void) {{\n"
        text += f"{USING[language]}{body}\n}}\n"
        calls += f"  example{number}();\n"
    return text + f"int main(void) {{\n{calls}  return 0;\n}}\n"


def main():
    action, language, target = sys.argv[1:]
    examples = [block.text for block in all_blocks() if block.kind == language]
    if action == "write":
        pathlib.Path(target).write_text(program(language, examples), "utf-8")
        return 0
    expected = [line for block in examples for line in PRINTED.findall(block)]
    printed = subprocess.run([target], stdout=subprocess.PIPE, text=True, check=True).stdout
    if printed.splitlines() == expected and expected:
        return 0
    print(f"documented: {expected}\nprinted: {printed.splitlines()}")
    return 1


if __name__ == "__main__":
    sys.exit(main())
