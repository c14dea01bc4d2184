"""tools/golden_table.py never takes over a changed row in silence."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import golden_table  # noqa: E402


class GoldenTable(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = pathlib.Path(folder.name) / "table.txt"
        self.program = pathlib.Path(folder.name) / "tvrng"
        self.draw("g rand 01", "g randn 02")
        self.assertEqual(self.run_tool("--write"), 0)

    def draw(self, *rows):
        self.program.write_text("#!/bin/sh\n" + "".join(f"echo {row}\n" for row in rows))
        self.program.chmod(0o755)

    def run_tool(self, *options):
        return golden_table.main([str(self.program), "--file", str(self.file), *options])

    def test_new_and_gone_rows_are_told_and_written_on_request(self):
        self.draw("g rand 01", "g randi 03")
        self.assertEqual(self.run_tool(), 1)
        self.assertEqual(self.run_tool("--write"), 0)
        self.assertEqual(self.run_tool(), 0)
        self.assertIn("sequence-version 1\ng rand 01\ng randi 03\n", self.file.read_text())

    def test_a_changed_row_needs_a_reason_and_raises_the_version(self):
        before = self.file.read_text()
        self.draw("g rand 01", "g randn 05")
        self.assertEqual(self.run_tool("--write"), 1)
        self.assertEqual(self.file.read_text(), before)
        self.assertEqual(self.run_tool("--change", "new tail"), 0)
        text = self.file.read_text()
        self.assertIn("# sequence-version 2: new tail\nsequence-version 2\n", text)
        self.assertIn("g randn 05\n", text)
        self.assertEqual(self.run_tool(), 0)


if __name__ == "__main__":
    unittest.main()
