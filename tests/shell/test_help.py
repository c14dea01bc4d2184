#!/usr/bin/env python3
"""Everything that can be called or set has help, whose examples run as they stand.

    test_help.py TVRNG
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest

TVRNG = ""


def run(*words, **options):
    done = subprocess.run([TVRNG, *words], capture_output=True, text=True, timeout=60, **options)
    return done.stdout, done.stderr, done.returncode


def help_on(topic):
    return run("-e", f"help('{topic}')")


class Help(unittest.TestCase):
    def test_every_name_has_an_entry(self):
        listing, _, _ = run("-e", "help")
        self.assertNotIn("without a text", listing)
        for name in ("rand", "Substream", "StreamIndices", "RandStream.default", "doctor", "vertcat"):
            self.assertIn(name, listing.split())

    def test_entries_are_whole_and_their_examples_run(self):
        listing, _, _ = run("-e", "help")
        topics = listing[listing.index("of one of these:"):].split("\n  and of")
        topics = " ".join(part.partition("\n")[2] for part in topics).split()
        self.assertGreater(len(topics), 140)
        with tempfile.TemporaryDirectory() as folder:
            environment = dict(os.environ, PATH=f"{os.path.dirname(TVRNG)}:{os.environ['PATH']}")
            for topic in topics:
                text, _, status = help_on(topic)
                with self.subTest(topic):
                    self.assertEqual(status, 0)
                    self.assertIn("\n  draws ", text)
                    examples = re.findall(r"^    > (.*)", text, re.M)
                    commands = re.findall(r"^    \$ (.*)", text, re.M)
                    self.assertEqual(len(examples) + len(commands), 2)
                    for example in examples:
                        _, error, status = run("-e", example, cwd=folder)
                        self.assertEqual(status, 0, example + error)
                    for command in commands:
                        subprocess.run(command, shell=True, check=True, capture_output=True,
                                       cwd=folder, env=environment, timeout=120)
                    also = text[text.index("\n  see also "):].split()[2:]
                    self.assertTrue(also and set(also) <= set(topics), also)

    def test_names_of_other_systems_lead_to_ours(self):
        for name, place in {"seed": "reset(RandStream.global(),", "shuffle": "randperm(n",
                            "choice": "randperm(n", "sample": "randperm(n", "normal": "randn(n",
                            "uniform": "rand(n", "Random": "rand(n", "randint": "randi("}.items():
            self.assertIn(place, help_on(name)[0], name)
        self.assertIn("randperm(numel(x))", run("-e", "shuffle(1:3)")[1])

    def test_what_is_mistyped_is_proposed(self):
        self.assertIn("did you mean Substream?", help_on("Substraem")[1])


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
