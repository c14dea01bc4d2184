"""Flags that would change numbers end the compilation, with a sentence that says so."""

import pathlib
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
REFUSED = ["-ffast-math", "-Ofast", "-funsafe-math-optimizations", "-ffinite-math-only"]


def compiled(source, flags):
    return subprocess.run(["g++", "-std=c++20", "-fsyntax-only", "-I.", *flags.split(), source],
                          cwd=ROOT, capture_output=True, text=True)


class RefusedFlags(unittest.TestCase):
    def test_each_is_refused_by_name_of_what_would_happen(self):
        for flags in REFUSED:
            done = compiled("tfl_rng/elementary.cpp", flags)
            self.assertNotEqual(done.returncode, 0, flags)
            self.assertIn("the same seed would give other", done.stderr.lower(), flags)

    def test_others_are_taken(self):
        self.assertEqual(compiled("tfl_rng/elementary.cpp", "-O3 -frounding-math").stderr, "")


if __name__ == "__main__":
    unittest.main()
