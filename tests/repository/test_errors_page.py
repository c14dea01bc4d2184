"""The page of errors is noticed to be out of date, and a key without a text is."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCES = ["errors/catalogue.def", "tfl_rng/generators.def", "embedded_host/messages.toml",
           "docs/errors.md", "tests/catalogue/raised.txt"]


class ErrorsPage(unittest.TestCase):
    def check_after(self, name, old, new):
        """Checks a copy of the sources in which `old` was replaced; returns status and output."""
        with tempfile.TemporaryDirectory() as tree:
            for source in SOURCES:
                copy = pathlib.Path(tree, source)
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / source, copy)
            changed = pathlib.Path(tree, name)
            text = changed.read_text()
            self.assertIn(old, text)
            changed.write_text(text.replace(old, new, 1))
            done = subprocess.run([sys.executable, ROOT / "tools/errors_page.py", "--check", tree],
                                  capture_output=True, text=True)
            return done.returncode, done.stdout + done.stderr

    def test_a_text_that_changed_makes_the_page_stale(self):
        status, out = self.check_after("embedded_host/messages.toml", "Too many outputs.",
                                       "Too much.")
        self.assertEqual(status, 1)
        self.assertIn("+| `TALVOR:maxlhs` | Too much.", out)

    def test_a_new_generator_makes_the_page_stale(self):
        status, out = self.check_after("tfl_rng/generators.def", "TFL_GENERATOR(swb2712",
                                       'TFL_GENERATOR(tenth, tenth, "", Single, 0, 1, "", "1")\n'
                                       "TFL_GENERATOR(swb2712")
        self.assertEqual(status, 1)
        self.assertIn("tenth", out)

    def test_a_key_without_a_text_is_told(self):
        status, out = self.check_after("errors/catalogue.def", "TV_KEY(RandStream::create, BadSeed",
                                       "TV_KEY(RandStream::create, BadMood, 0)\n"
                                       "TV_KEY(RandStream::create, BadSeed")
        self.assertEqual(status, 1)
        self.assertIn("TALVOR:RandStream:create:BadMood has no text", out)


if __name__ == "__main__":
    unittest.main()
