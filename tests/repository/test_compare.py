"""The benchmark report says what was measured."""

import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "benchmarks"))
import compare  # noqa: E402


def report(*rows):
    """A report with three repetitions of each (run_name, values, median time of an iteration)."""
    entries = []
    for name, values, time in rows:
        for factor in (3.0, 1.0, 0.9):  # the median is the middle one, the mean is not
            entries.append({
                "run_name": name, "run_type": "iteration", "time_unit": "ns",
                "cpu_time": factor * time, "values": values,
            })
        entries.append({"run_name": name, "run_type": "aggregate", "cpu_time": 1e9})
    return {"benchmarks": entries}


def lines_of(*rows):
    return compare.table(compare.times(report(*rows)))


class Table(unittest.TestCase):
    def test_times_are_medians_a_value_and_the_ratio_is_to_the_fastest_peer_of_that_size(self):
        lines = lines_of(
            ("memset double/any/memset/100", 100, 5.0),
            ("uniform double/g/tvmathrng/100", 100, 100.0),
            ("uniform double/g/tvmathrng/1000", 1000, 500.0),
            ("uniform double/g/slow/100", 100, 900.0),
            ("uniform double/g/fast/100", 100, 250.0),
            ("uniform double/g/fast/1000", 1000, 7500.0),
        )
        self.assertIn("### Uniform double", lines)
        self.assertIn("| values a call | 100 | 1,000 |", lines)
        self.assertIn("| **g** | 1 (2.50x) | 0.5 (15x) |", lines)
        self.assertIn("| fast | 2.5 | 7.5 |", lines)
        self.assertIn("| slow | 9 |  |", lines)

    def test_a_peer_of_any_generator_counts_for_all_and_others_only_for_their_own(self):
        lines = lines_of(
            ("w/g/tvmathrng/1", 1, 2.0),
            ("w/h/tvmathrng/1", 1, 4.0),
            ("w/any/everyone/1", 1, 8.0),
            ("w/g/only g/1", 1, 6.0),
            ("w/any/memset of something/1", 1, 0.5),
            ("w/absent/nobody/1", 1, 1.0),
        )
        table = [line for line in lines if line.startswith("|")]
        self.assertEqual(
            table,
            ["| values a call | 1 |", "|---|---:|", "| **g** | 2 (3.00x) |", "| only g | 6 |",
             "| **h** | 4 (2.00x) |", "| everyone | 8 |", "| memset of something | 0.5 |"],
        )

    def test_singles_stand_beside_the_memset_of_singles(self):
        lines = lines_of(
            ("memset double/any/memset/10", 10, 20.0),
            ("memset double/any/memset/20", 20, 40.0),
            ("memset single/any/memset/10", 10, 10.0),
            ("memset single/any/memset/20", 20, 20.0),
            ("uniform single/g/tvmathrng/10", 10, 30.0),
            ("uniform single/g/tvmathrng/20", 20, 60.0),
        )
        self.assertIn("| memset | 1 | 1 |", lines)

    def test_update_replaces_what_stands_between_the_marks_and_nothing_else(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "doc.md")
            file.write_text("before\n<!-- table -->\nold\n<!-- end of table -->\nafter\n")
            compare.update(file, ["new"])
            self.assertEqual(
                file.read_text(), "before\n<!-- table -->\nnew\n<!-- end of table -->\nafter\n"
            )


if __name__ == "__main__":
    unittest.main()
