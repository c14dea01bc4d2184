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

    def __init__(self, home, locale="C.UTF-8"):
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            environment = dict(os.environ, HOME=home, TERM="xterm", LC_ALL=locale,
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

    def signal(self, number):
        os.kill(self.process, number)
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

    def test_control_c_ends_a_function_and_tells_the_streams_drawn_from(self):
        session = self.session
        session.type("y = rand(1,2e7); x = 7; s = RandStream('philox'); t = s;\n")
        session.type("c = {RandStream('mcg16807')}; r = RandStream('twister');\n")
        for call, told in (("0", "  nothing was drawn\r"),
                           ("rand", "  numbers were drawn before it, from the global stream\r"),
                           ("rand(s)", "  numbers were drawn before it, from s\r"),
                           ("rand + rand(r) + rand(t)",
                            "  numbers were drawn before it, from the global stream, r, s\r"),
                           ("rand(c{1})",
                            "  numbers were drawn before it, from a stream that no variable holds\r")):
            with self.subTest(call):
                session.type(f"print('on'), x = {call} + sort(y,'descend');\n").expect("\non")
                time.sleep(0.1)
                session.press("\x03")
                start = time.monotonic()
                session.expect("[TALVOR:language:interrupted]" + told)
                self.assertLess(time.monotonic() - start, 1.5)  # the sort takes seconds
                session.type("x\n").expect("x = 7")

    def test_commands_without_parentheses(self):
        session = self.session
        session.type("format long\npi\n").expect("3.14159265358979")
        session.type("help randperm\n").expect("randperm(n,k)")

    def test_letters_beyond_ascii(self):
        for locale in ("C.UTF-8", "C"):
            with self.subTest(locale):
                session = Session(self.home.name, locale)
                session.type("double('a\u00e9\u00e2\u20ac\U0001f3b2b')\n")
                session.expect("97    233    226   8364  55356  57266     98")
                # Deleted, passed over and dropped character by character.
                session.type("numel('\u00e9\u00fc\u20ac')\x1b[D\x1b[D\x7f\x7f\n").expect("ans = 1")
                session.type("'\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9'\x03").expect("^C")
                session.type("1+1\n").expect("ans = 2")
                session.type("\x04")
                self.assertEqual(session.end(), 0)
                # They come back from the file as well.
                session = Session(self.home.name, locale)
                session.type("\x1b[A\x1b[A\x1b[A\n").expect("57266     98")
                session.type("\x04")
                self.assertEqual(session.end(), 0)


class Histories(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)
        self.file = pathlib.Path(self.home.name, ".local/state/tvrng/history")

    def session(self):
        return Session(self.home.name)

    def kept(self):
        return [re.sub(r"\\(\d{3})", lambda m: chr(int(m[1], 8)), line).rstrip("\n")
                for line in self.file.read_text().splitlines()[1:]]

    def test_lines_are_remembered(self):
        session = self.session()
        session.type("40+2\n").expect("ans = 42").type("'a\\b'\n").expect("ans = 'a").type("\x04")
        self.assertEqual(session.end(), 0)
        self.assertEqual(self.kept(), ["40+2", "'a\\b'"])
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o600)
        session = self.session()
        session.type("\x1b[A\n").expect("ans = 'a\\b'").type("\x1b[A\x1b[A\n").expect("ans = 42")
        session.type("40+2\n").expect("ans = 42").type("\x04")
        session.end()
        self.assertEqual(self.kept(), ["40+2", "'a\\b'", "40+2"])  # none twice in a row

    def test_prompts_side_by_side_keep_each_others_lines(self):
        one, other = self.session(), self.session()
        one.type("1+1\n").expect("ans = 2").expect("> ")
        other.type("1+2\n").expect("ans = 3").expect("> ")
        one.type("1+3\n")
        for session in (one, other):
            session.type("\x04")
            self.assertEqual(session.end(), 0)
        self.assertEqual(self.kept(), ["1+1", "1+2", "1+3"])

    def test_a_prompt_ended_by_a_signal_keeps_its_lines(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            session = self.session()
            session.type(f"{number:d}+5\n").expect("ans = ").expect("> ")
            session.type("half a li").signal(number)
            self.assertEqual(session.end(), -number)
        self.assertEqual(self.kept(), ["15+5", "1+5"])

    def test_what_is_no_file_is_left_alone(self):
        self.file.parent.mkdir(parents=True)
        for make in (lambda: os.mkfifo(self.file), lambda: self.file.mkdir()):
            make()
            session = self.session()
            session.type("2*3\n").expect("ans = 6").type("\x04")
            self.assertEqual(session.end(), 0)
            self.file.rmdir() if self.file.is_dir() else self.file.unlink()

    def test_a_long_file_is_cut_to_the_latest_lines(self):
        self.file.parent.mkdir(parents=True)
        self.file.write_text("_HiStOrY_V2_\n" + "".join(f"{i}\\012\n" for i in range(4000)))
        session = self.session()
        session.type("\x04").end()
        self.assertEqual(len(self.kept()), 4000)
        with self.file.open("a") as file:
            file.write("4000\\012\n")
        session = self.session()
        session.type("-1\n").expect("ans = -1").type("\x04").end()
        self.assertEqual(self.kept(), [str(i) for i in range(2001, 4001)] + ["-1"])


if __name__ == "__main__":
    TVRNG = str(pathlib.Path(sys.argv.pop(1)).resolve())
    unittest.main()
