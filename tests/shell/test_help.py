#!/usr/bin/env python3
"""Every topic that help lists has help, and its example runs as it stands.

    test_help.py TVRNG
"""

import subprocess
import sys
import unittest

TVRNG = ""


def run(*words):
    done = subprocess.run([TVRNG, *words], capture_output=True, text=True, timeout=60)
    return done.stdout, done.stderr, done.returncode


class Help(unittest.TestCase):
    def topics(self):
        listing, _, _ = run("-e", "help")
        lists = [line for line in listing.splitlines()
                 if line.startswith("  ") and not line.startswith("    ") and " " in line.strip()]
        names = {word for line in lists for word in line.split() if word.isidentifier()}
        return [name for name in names if not run("-e", f"help('{name}')")[2]]

    def test_examples_run(self):
        topics = self.topics()
        self.assertGreater(len(topics), 100)
        for topic in topics:
            with self.subTest(topic):
                text, _, _ = run("-e", f"help('{topic}')")
                examples = [line[6:] for line in text.splitlines() if line.startswith("    > ")]
                self.assertEqual(len(examples), 1)
                _, error, status = run("-e", examples[0])
                self.assertEqual((status, error), (0, ""), examples[0])

    def test_every_function_has_help(self):
        known, _, _ = run("-e", "help")
        for name in ("rand", "randn", "randi", "randperm", "RandStream", "zeros", "print", "whos"):
            self.assertIn(name, known.split())


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
