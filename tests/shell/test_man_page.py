#!/usr/bin/env python3
"""The man page tells of every command and option that the shell's usage tells of, and of no others.

    test_man_page.py TVRNG PAGE
"""

import pathlib
import re
import shutil
import subprocess
import sys
import unittest

TVRNG, PAGE = sys.argv[1:3]


class ManPage(unittest.TestCase):
    def test_commands_and_options_are_those_of_the_shell(self):
        def usage(*words):
            return subprocess.run([TVRNG, *words, "--help"], capture_output=True, text=True,
                                  check=True).stdout

        text = usage()
        commands = re.findall(r"^ +tvrng ([a-z]+) ", text, re.MULTILINE)
        self.assertIn("stream", commands)
        page = pathlib.Path(PAGE).read_text("utf-8")
        sections = dict(re.findall(r"^\.Ss tvrng (\w+)\n(.*?)(?=^\.S)", page, re.DOTALL | re.MULTILINE))
        self.assertEqual(sorted(sections), sorted(commands))
        sections[""] = page[page.index(".Sh DESCRIPTION"):page.index(".Ss")]
        for command, section in sections.items():
            told = set(re.findall(r"--[a-z]+", usage(*command.split())))
            if command:
                told.discard("--help")  # told once, for all commands
            described = {"-" + option for option in re.findall(r"(?:\.It|,) Fl (-[a-z]+)", section)}
            self.assertEqual(described, told,
                             command)

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_it_is_well_formed(self):
        done = subprocess.run(["mandoc", "-Tlint", PAGE], capture_output=True, text=True)
        self.assertEqual(done.stdout, "")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
