#!/usr/bin/env python3
"""The report is one well-formed file that asks for nothing, small, and quickly made.

    test_page.py TVRNG
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

TVRNG = ""
PLOTS = ["density", "distribution", "bits", "quantiles", "seam", "pairs", "strip", "planes",
         "autocorrelation", "neighbours", "integers", "permutations", "map", "equality", "speed", "p-values"]


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "report.html")
            subprocess.run([TVRNG, "report", "philox4x32_10", "-o", path], check=True, timeout=300)
            with open(path, encoding="utf-8") as file:
                cls.page = file.read()

    def test_every_plot_has_a_verdict_and_two_drawings(self):
        sections = re.findall(r'<section id="([^"]*)" class="plot" data-verdict="(\w+)">(.*?)</section>',
                              self.page, re.S)
        self.assertEqual([name for name, _, _ in sections], PLOTS)
        for name, verdict, content in sections:
            with self.subTest(name):
                self.assertEqual(verdict, "fact" if name == "speed" else "good")
                drawings = re.findall(r"<svg.*?</svg>", content, re.S)
                self.assertEqual(len(drawings), 2)
                for drawing in drawings:
                    root = xml.etree.ElementTree.fromstring(drawing)
                    self.assertTrue(root.find("title").text)
                    self.assertNotRegex(re.sub(r">[^<]*<", "", drawing), r"\b(nan|inf)\b")

    def test_asks_for_nothing(self):
        self.assertNotRegex(self.page, r"https?:|<script|src=|url\(|@import")
        self.assertLess(len(self.page.encode()), 5_000_000)


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
