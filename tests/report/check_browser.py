#!/usr/bin/env python3
"""Looks at reports in headless Chromium, at the widths of a desk and a phone, in light and dark.

    check_browser.py TVRNG [SCREENSHOTS]

Each page loads without a word on the console and without a request to any address, shows every plot
once with its verdict, fits the width, and no two labels overlap. With a folder as second argument,
pictures of the pages are left there to be looked at. tools/check.sh browser runs this.
"""

import os
import subprocess
import sys
import tempfile
import time
import unittest

from browser import Browser

TVRNG = ""
SCREENSHOTS = None
WIDTHS = (1280, 390)

# Texts of visible drawings that overlap or lie outside of the screen.
FAULTS = """(() => {
  const faults = [], wide = document.documentElement.clientWidth;
  for (const svg of document.querySelectorAll('svg')) {
    const texts = [...svg.querySelectorAll('text')].map(t => [t.textContent, t.getBoundingClientRect()])
                    .filter(([text, box]) => text && box.width > 0);
    texts.forEach(([text, a], i) => {
      if (a.left < -1 || a.right > wide + 1) faults.push('outside: ' + text);
      for (const [other, b] of texts.slice(i + 1)) {
        const x = Math.min(a.right, b.right) - Math.max(a.left, b.left);
        const y = Math.min(a.bottom, b.bottom) - Math.max(a.top, b.top);
        if (x > 1 && y > 3) faults.push(`overlap: ${text} | ${other}`);
      }
    });
  }
  if (document.documentElement.scrollWidth > wide) faults.push('wider than the screen');
  return faults;
})()"""
VISIBLE = """[...document.querySelectorAll('section.plot')].map(section => [section.id,
  section.dataset.verdict, [...section.querySelectorAll('svg, table')].filter(
    e => e.getBoundingClientRect().width > 0).length])"""
PLOTS = ["density", "distribution", "bits", "quantiles", "seam", "pairs", "strip", "planes",
         "autocorrelation", "neighbours", "integers", "permutations", "map", "equality", "speed",
         "p-values"]
LATTICE = {"strip", "planes", "neighbours", "p-values"}


class Pages(unittest.TestCase):
    def look(self, words, expected):
        """`expected`: verdicts and numbers of drawings by section."""
        with tempfile.TemporaryDirectory() as folder, Browser() as browser:
            path = os.path.join(folder, "report.html")
            begun = time.monotonic()
            subprocess.run([TVRNG, "report", *words, "-o", path], check=True)
            print(f"{words[0]}: {time.monotonic() - begun:.1f} s, {os.path.getsize(path)} bytes")
            self.assertLess(os.path.getsize(path), 5_000_000)
            for width in WIDTHS:
                for dark in (False, True):
                    with self.subTest(width=width, dark=dark):
                        browser.open(path, width, dark)
                        self.assertEqual(browser.evaluate(FAULTS), [])
                        self.assertEqual(browser.evaluate(VISIBLE), expected)
                        self.assertEqual(browser.complaints(), [])
                        self.assertEqual(browser.requests(), [])
                    if SCREENSHOTS:
                        scheme = "dark" if dark else "light"
                        name = f"{words[0].strip('-')}_{width}_{scheme}.png"
                        browser.screenshot(os.path.join(SCREENSHOTS, name))

    def test_good_generator(self):
        self.look(["philox4x32_10"],
                  [[name, "fact" if name == "speed" else "good", 1] for name in PLOTS])

    def test_lattice(self):
        self.look(["mcg16807", "--seed", "1"],
                  [[name, "fact" if name == "speed" else "bad" if name in LATTICE else "good", 1]
                   for name in PLOTS])

    def test_all(self):
        self.look(["--all"], [["verdicts", "bad", 1], ["distribution", "good", 10],
                              ["strip", "bad", 10], ["planes", "bad", 10], ["neighbours", "bad", 10],
                              ["speed", "fact", 1], ["p-values", "bad", 1]])


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    SCREENSHOTS = sys.argv.pop(1) if len(sys.argv) > 1 and os.path.isdir(sys.argv[1]) else None
    unittest.main()
