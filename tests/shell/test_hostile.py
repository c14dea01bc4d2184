#!/usr/bin/env python3
"""Programs from hostile hands get a message and status 1, in bounded time and memory.

    test_hostile.py TVRNG
"""

import os
import resource
import subprocess
import sys
import tempfile
import unittest

TVRNG = ""
MEMORY = 1 << 30  # bytes of address space; sanitizers need more and are told by their option
SANITIZED = "TV_SANITIZED" in os.environ

PROGRAMS = {
    "a megabyte of parentheses": b"(" * (1 << 20),
    "a megabyte of closed ones": b"(" * (1 << 19) + b"1" + b")" * (1 << 19),
    "a megabyte of brackets": b"[" * (1 << 20),
    "a megabyte of braces": b"{" * (1 << 20),
    "a megabyte of signs": b"-" * (1 << 20) + b"1",
    "a megabyte of sums": b"1" + b"+1" * (1 << 19),
    "a megabyte of points": b"x" + b".x" * (1 << 19),
    "a megabyte of transposes": b"1" + b"'" * (1 << 20),
    "a megabyte of powers": b"2" + b"^2" * (1 << 19),
    "a megabyte of ranges": b"1" + b":1" * (1 << 19),
    "a megabyte of blocks": b"if 1\n" * (1 << 18),
    "a megabyte of tries": b"try\n" * (1 << 18),
    "a megabyte of digits": b"1" * (1 << 20) + b"x",
    "a megabyte of quotes": b"'" * ((1 << 20) + 1),
    "more than is read": b"1;" * (3 << 20),
    "an open text": b"x = 'abc",
    "an open string": b'x = "abc',
    "an open comment": b"%{\nabc",
    "an escape at the end": b'x = "abc\\',
    "an open continuation": b"x = 1 ...",
    "a NUL byte": b"x = 1\0",
    "a NUL byte in a text": b"x = 'a\0b'",
    "invalid UTF-8": b"x = \xff\xfe",
    "invalid UTF-8 in a text": b"x = 'a\xc3(b'",
    "overlong UTF-8 in a text": b"x = '\xc0\xaf'",
    "a surrogate in a text": b"x = '\xed\xa0\x80'",
    "all bytes": bytes(range(256)) * 64,
    "an immense array": b"zeros(1e9,1e9)",
    "an immense random array": b"rand(1e9,1e9)",
    "dimensions that overflow": b"ones(2^32,2^32,2^32)",
    "many dimensions": b"zeros(" + b",".join([b"2"] * 100) + b")",
    "an immense cell": b"cell(1e9,1e9)",
    "an immense range": b"1:1e300",
    "a range without end": b"0:realmin:1",
    "a range of ranges": b"x = 1:10; while true, x = [x x x x]; end",
    "an immense index": b"x = 1; x(2^52) = 1",
    "an immense second index": b"x = 1; x(2^31,2^31) = 1",
    "an immense repetition": b"repmat(zeros(1000),1e6,1e6)",
    "a reshape that overflows": b"reshape(zeros(0,1),2^32,2^32)",
    "deep cells": b"c = {}; while true, c = {c}; end",
    "wide cells": b"c = {1}; while true, c = {c,c}; end",
    "a text that grows": b"s = \"x\"; while true, s = s + s; end",
    "a permutation": b"randperm(1e15)",
    "an immense bit set": b"bitand(2^60,1)",
    "an error with a long line": b"x = [" + b"1 " * 200000 + b"; 1 2]",
}


def limit_memory():
    if not SANITIZED:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


class Hostile(unittest.TestCase):
    def test_every_program_is_refused_with_a_message(self):
        for name, program in PROGRAMS.items():
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


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
