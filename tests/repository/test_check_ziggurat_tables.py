"""One wrong digit anywhere in the ziggurat tables is found."""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TABLES = ROOT / "rng/ziggurat_tables.cpp"
KNOWN = ROOT / "tests/kat/ziggurat256.txt"


def run_check(path):
    done = subprocess.run(
        [sys.executable, ROOT / "tools/check_ziggurat_tables.py", path],
        capture_output=True,
        text=True,
    )
    return done.returncode, done.stdout


class CheckZigguratTables(unittest.TestCase):
    def test_the_rule_reproduces_the_known_answers(self):
        self.assertEqual(run_check(KNOWN)[0], 0)

    def test_a_changed_last_digit_is_named(self):
        literals = list(re.finditer(r"\b[0-3]\.\d{13,}", TABLES.read_text()))
        self.assertGreater(len(literals), 450)
        for match in literals[5:: len(literals) // 5]:
            with self.subTest(literal=match[0]), tempfile.TemporaryDirectory() as folder:
                text = TABLES.read_text()
                at = match.end() - 1
                wrong = text[:at] + str((int(text[at]) + 1) % 10) + text[at + 1:]
                changed = pathlib.Path(folder, "changed.cpp")
                changed.write_text(wrong)
                status, out = run_check(changed)
                self.assertEqual((status, out.count("\n")), (1, 1), out)
                self.assertIn(wrong[match.start():match.end()], out)

    def test_a_missing_row_is_told(self):
        with tempfile.TemporaryDirectory() as folder:
            short = pathlib.Path(folder, "short.txt")
            short.write_text("\n".join(KNOWN.read_text().splitlines()[:-1]))
            status, out = run_check(short)
            self.assertEqual(status, 1)
            self.assertIn("256 values, expected 257", out)


if __name__ == "__main__":
    unittest.main()
