#!/usr/bin/env python3
"""Programs from hostile hands get a message and status 1, in bounded time and memory.

    test_hostile.py TVRNG
"""

import ast
import os
import re
import resource
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TVRNG = ""
MEMORY = 1 << 30  # bytes of address space; sanitizers need more and are told by their option
SANITIZED = "TV_SANITIZED" in os.environ
# End at that limit and no sooner.
LIMITED_BY_MEMORY = ("a range of ranges", "a text that grows")

def read_programs():
    """The programs of hostile_programs.dat by name."""
    programs = {}
    for line in (Path(__file__).parent / "hostile_programs.dat").read_text().splitlines():
        if line.startswith("#"):
            continue
        name, text = line.split(": ", 1)
        pieces = re.findall(r"""(b'(?:[^'\\]|\\.)*'|b"(?:[^"\\]|\\.)*")(?:\*(\d+))?""", text)
        programs[name] = b"".join(ast.literal_eval(piece) * int(count or 1)
                                  for piece, count in pieces)
    return programs


def limit_memory():
    if not SANITIZED:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


class Hostile(unittest.TestCase):
    def test_every_program_is_refused_with_a_message(self):
        programs = read_programs()
        self.assertGreater(len(programs), 40)
        for name, program in programs.items():
            if SANITIZED and name in LIMITED_BY_MEMORY:
                continue
            with self.subTest(name), tempfile.NamedTemporaryFile(suffix=".tv") as file:
                file.write(program)
                file.flush()
                done = subprocess.run([TVRNG, file.name], capture_output=True, timeout=120,
                                      preexec_fn=limit_memory)
                self.assertEqual(done.returncode, 1, done.stderr[-2000:])
                self.assertIn(b"[TALVOR:", done.stderr)
                self.assertNotIn(b"TALVOR:language:internal", done.stderr)
                self.assertLess(len(done.stderr), 2000)
                for line in done.stderr.splitlines():
                    self.assertLessEqual(len(line), 200)

    @unittest.skipIf(SANITIZED, "needs the limit")
    def test_a_result_without_memory_draws_nothing(self):
        for statement, told in ((b"rand(1e9,1)", b"nothing was drawn"),
                                (b"rand; x = rand(1e9,1)", b"nothing was drawn"),
                                (b"x = [rand rand(1e9,1)]", b"numbers were drawn before it")):
            done = subprocess.run([TVRNG, "-e", statement], capture_output=True, timeout=120,
                                  preexec_fn=limit_memory)
            self.assertIn(b"[TALVOR:nomem]  " + told, done.stderr)


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
