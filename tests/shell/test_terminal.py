#!/usr/bin/env python3
"""The prompt on a terminal: completion, several lines of input, Ctrl-C, Ctrl-D, history.

    test_terminal.py TVRNG
"""

import os
import pathlib
import pty
import re
import select
import signal
import sys
import tempfile
import termios
import time
import unittest

TVRNG = ""
SECONDS = 60
LOCAL_MODES = 3  # of the attributes of a terminal
ESCAPE = re.compile(rb"\x1b(\[[0-9;?]*[A-Za-z]|[=>])")


class Session:
    """tvrng on a terminal of its own."""

    def __init__(self, home):
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            environment = dict(os.environ, HOME=home, TERM="xterm", LC_ALL="C.UTF-8",
                               XDG_STATE_HOME="", TVRNG_SETTINGS="/dev/null")
            os.execve(TVRNG, [TVRNG], environment)
        self.unread = b""
        self.expect("Ctrl-D leaves.")

    def type(self, text):
        """Types at the prompt, as soon as the editor reads keys itself."""
        limit = time.monotonic() + SECONDS
        while termios.tcgetattr(self.terminal)[LOCAL_MODES] & termios.ICANON:
            if time.monotonic() > limit:
                raise AssertionError(f"no prompt came, but {self.unread.decode()!r}")
            time.sleep(0.001)
        return self.press(text)

    def press(self, keys):
        """Types at once, whatever goes on."""
        os.write(self.terminal, keys.encode())
        return self

    def expect(self, text):
        """Reads on until `text` has come; fails when it does not."""
        wanted = text.encode()
        while wanted not in self.unread:
            ready, _, _ = select.select([self.terminal], [], [], SECONDS)
            if not ready:
                raise AssertionError(f"no {text!r} came, but {self.unread.decode()!r}")
            try:
                came = os.read(self.terminal, 4096)
            except OSError:
                raise AssertionError(f"tvrng ended before {text!r}: {self.unread.decode()!r}")
            self.unread = ESCAPE.sub(b"", self.unread + came)
        self.unread = self.unread[self.unread.index(wanted) + len(wanted):]
        return self

    def end(self):
        """The exit status, negative when tvrng had to be killed."""
        limit = time.monotonic() + SECONDS
        ended, status = os.waitpid(self.process, os.WNOHANG)
        while ended == 0 and time.monotonic() < limit:
            time.sleep(0.01)
            ended, status = os.waitpid(self.process, os.WNOHANG)
        if ended == 0:
            os.kill(self.process, signal.SIGKILL)
            _, status = os.waitpid(self.process, 0)
        os.close(self.terminal)
        return os.waitstatus_to_exitcode(status)


class Terminal(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()
        self.session = Session(self.home.name)

    def tearDown(self):
        self.session.press("\x03")
        self.session.type("exit\n")
        self.session.end()
        self.home.cleanup()

    def test_names_are_completed(self):
        session = self.session
        session.type("ran\t\t").expect("  rand  randi  randn  randperm")
        session.type("p\t(1)\n").expect("ans = 1")
        session.type("RAND\t\t").expect("  RandStream  rand  randi").type("\x03")

    def test_texts_and_members_are_completed(self):
        session = self.session
        session.type("s = RandStream('mcg\t');\n").expect("16807');")
        session.type("s.anti\t\n").expect("ans = false")
        session.type("g = RandStream.gl\t;\ng.Type\n").expect("ans = 'mt19937ar'")
        session.type("nosuch\t + 1\n").expect("no variable or function 'nosuch'")

    def test_input_of_several_lines(self):
        session = self.session
        session.type("for k = 1:2\n").expect(". ")
        session.type("\tprint('k is', k)\nend\n").expect("k is 2")
        # The end of the input in the middle of it.
        session.type("[1 2\n").expect(". ").type("\x04").expect("never closed")
        session.type("6*7\n").expect("ans = 42")

    def test_control_c_drops_the_line_and_ends_a_statement(self):
        session = self.session
        session.type("6*7\x03").expect("^C").type("1+1\n").expect("ans = 2")
        session.type("for k = 1:2\n").expect(". ").type("\x03").expect("^C")
        session.type("2+3\n").expect("ans = 5")
        session.type("print('on'), while true, end\n").expect("\non").press("\x03")
        session.expect("TALVOR:language:interrupted")

    def test_commands_without_parentheses(self):
        session = self.session
        session.type("format long\npi\n").expect("3.14159265358979")
        session.type("help randperm\n").expect("randperm(n,k)")

    def test_lines_are_remembered(self):
        self.session.type("40+2\n").expect("ans = 42").type("\x04")
        self.assertEqual(self.session.end(), 0)
        kept = pathlib.Path(self.home.name, ".local/state/tvrng/history").read_text()
        self.assertIn("40+2", kept.replace(r"\040", " "))
        self.session = Session(self.home.name)
        self.session.type("\x1b[A\n").expect("ans = 42")


if __name__ == "__main__":
    TVRNG = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main()
