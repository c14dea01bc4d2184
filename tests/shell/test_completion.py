#!/usr/bin/env python3
"""What bash proposes for tvrng is what tvrng takes.

    test_completion.py TVRNG SCRIPT
"""

import subprocess
import sys
import unittest

TVRNG, SCRIPT = sys.argv[1:3]


def proposed(*words):
    line = " ".join(f"'{word}'" for word in ("tvrng", *words))
    previous = words[-2] if len(words) > 1 else "tvrng"
    program = (f". '{SCRIPT}'; COMP_WORDS=({line}); COMP_CWORD={len(words)}; "
               f"_tvrng '{TVRNG}' '{words[-1]}' '{previous}'; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
    return subprocess.run(["bash", "-c", program], capture_output=True, text=True, check=True,
                          cwd="/").stdout.split()


class Completion(unittest.TestCase):
    def test_proposes_commands_options_and_generators(self):
        self.assertEqual(proposed("str"), ["stream"])
        self.assertEqual(proposed("--j"), ["--json"])
        self.assertEqual(proposed("doctor", "--t"), ["--table"])
        self.assertEqual(proposed("report", "mt"), ["mt19937ar"])
        self.assertIn("--substream", proposed("stream", "--s"))
        self.assertIn("etc", proposed("-e", "et"))

    def test_proposed_values_are_taken(self):
        for option, more, count in (("--dist", [], 4), ("--format", [], 4), ("--generator", [], 9),
                                    ("--method", ["--dist", "normal"], 3), ("--type", [], 8)):
            values = proposed("stream", option, "")
            self.assertGreaterEqual(len(values), count)
            for value in values:
                if option == "--type" and "int" in value:
                    more = ["--dist", "integers"]
                elif option == "--type":
                    more = ["--dist", "normal"]
                subprocess.run([TVRNG, "stream", "--count", "1", *more, option, value], check=True,
                               stdout=subprocess.DEVNULL)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
