#!/usr/bin/env python3
"""Ctrl-C during a long advance leaves the stream where it was; a terminal sees how far it is.

    test_interrupt.py TVRNG
"""

import os
import pty
import signal
import subprocess
import sys
import unittest

TVRNG = ""


class LongAdvance(unittest.TestCase):
    def test_interrupt_takes_the_stream_back(self):
        terminal, other = pty.openpty()
        shell = subprocess.Popen([TVRNG, "-i"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=other, text=True, bufsize=1)
        os.close(other)
        shell.stdin.write("s = RandStream('mt19937ar','Seed',3); rand(s,1,5); x = s.State;\n"
                          "print('begun')\nadvance(s,1e13)\n")
        while "begun" not in shell.stdout.readline().replace("print", "").replace("('begun')", ""):
            pass
        shown = b""
        while b"left" not in shown:  # until the bar with its estimate has been drawn
            shown += os.read(terminal, 4096)
        shell.send_signal(signal.SIGINT)
        output, _ = shell.communicate("same(x, s.State)\n", timeout=60)
        while b"interrupted" not in shown:
            shown += os.read(terminal, 4096)
        os.close(terminal)
        self.assertIn("ans = true", output)
        self.assertIn(b"advance, drawing 1e+13 values", shown)
        self.assertIn(b"TALVOR:language:interrupted", shown)
        self.assertNotIn(b"were drawn", shown)


if __name__ == "__main__":
    TVRNG = sys.argv.pop(1)
    unittest.main()
