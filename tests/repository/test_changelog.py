"""The changelog's newest entry names the version and the sequence version of this tree."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def found(pattern, file):
    return re.search(pattern, (ROOT / file).read_text("utf-8"), re.MULTILINE)[1]


class Changelog(unittest.TestCase):
    def test_newest_entry_is_this_version(self):
        self.assertEqual(found(r"^## (\S+?),? ", "CHANGELOG.md"),
                         found(r"^project\(tvmathrng VERSION (\S+)", "CMakeLists.txt"))
        self.assertEqual(found(r"^Sequence version (\d+)", "CHANGELOG.md"),
                         found(r"^sequence-version (\d+)", "golden/golden_table.txt"))


if __name__ == "__main__":
    unittest.main()
