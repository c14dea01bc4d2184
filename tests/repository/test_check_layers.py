"""The layer check finds what it is there to find."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def run_check(files):
    """Runs the check over a tree of these files; returns its status and output."""
    with tempfile.TemporaryDirectory() as tree:
        for name, text in files.items():
            path = pathlib.Path(tree, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        done = subprocess.run(
            [sys.executable, ROOT / "tools/check_layers.py", tree], capture_output=True, text=True
        )
        return done.returncode, done.stdout


class CheckLayers(unittest.TestCase):
    def test_an_include_to_a_lower_room_passes(self):
        status, out = run_check({
            "host/sort.h": "#pragma once\n",
            "rng/a.cpp": '#include "rng/a.h"\n#include <cmath>\n#include "host/sort.h"\n',
            "rng/a.h": "#include <vector>\n",
        })
        self.assertEqual((status, out.count("\n")), (0, 1), out)

    def test_each_breaking_include_is_named_with_file_and_line(self):
        cases = [
            # room's file, included, as written
            ("tfl_rng/a.cpp", "host/b.h", '"host/b.h"'),
            ("host/a.h", "errors/b.h", '"errors/b.h"'),
            ("rng/a.cpp", "vmstate/b.h", '"vmstate/b.h"'),
            ("rng/a.cpp", "vmstate/b.h", "<vmstate/b.h>"),
            ("language/a.cpp", "rng/b.h", '"rng/b.h"'),
            ("embedded_host/deep/a.cpp", "tfl_rng/b.h", '"tfl_rng/b.h"'),
            ("builtins/a.cpp", "runtime/b.h", '"runtime/b.h"'),
            ("shell/a.cpp", "vmstate/b.h", '"vmstate/b.h"'),
            ("rng/a.cpp", "tests/b.h", '"tests/b.h"'),
            ("tests/second_host/a.cpp", "embedded_host/b.h", '"embedded_host/b.h"'),
            ("rng/a.cpp", "rng/b.h", '"b.h"'),
            ("plugin_rng/other.h", "rng/b.h", "<tbb/parallel_for.h>"),
            ("rng/a.h", "rng/b.h", "<boost/shared_ptr.hpp>"),
        ]
        for file, included, written in cases:
            with self.subTest(file=file, include=written):
                status, out = run_check({included: "", file: f"\n\n#  include {written}\n"})
                self.assertEqual(status, 1, out)
                self.assertEqual(out.count("\n"), 1, out)
                self.assertTrue(out.startswith(f"{file}:3: "), out)

    def test_third_party_headers_pass_in_their_own_place(self):
        status, out = run_check({
            "plugin_rng/parallel.h": "#include <tbb/parallel_for.h>\n",
            "embedded_host/settings.cpp": "#include <toml++/toml.h>\n",
            "tests/second_host/a_test.cpp": "#include <gtest/gtest.h>\n",
        })
        self.assertEqual(status, 0, out)

    def test_a_room_without_a_row_is_refused(self):
        status, out = run_check({"attic/a.cpp": ""})
        self.assertEqual(status, 1, out)
        self.assertTrue(out.startswith("attic: "), out)


if __name__ == "__main__":
    unittest.main()
