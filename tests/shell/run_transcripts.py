#!/usr/bin/env python3
"""Runs transcripts and programs against tvrng.

    run_transcripts.py TVRNG FILE...

A .txt file is a transcript: either of one session, as `tvrng -i` writes it ("> " and ". " before
the input), or of commands ("$ " before each; "[status N]" after its output when N is not 0). Leading
lines that start with "#" are comments, and <...> stands for any text on one line.
A .tv file is a program that must run. Commands find the examples in $EXAMPLES.
With --update the transcripts of .txt files are rewritten from what came; read the difference.
"""

import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

TIMEOUT = 120
ROOT = pathlib.Path(__file__).resolve().parents[2]


class Runner:
    def __init__(self, tvrng):
        self.tvrng = pathlib.Path(tvrng).resolve()
        self.home = tempfile.TemporaryDirectory()
        settings = pathlib.Path(self.home.name, "settings.toml")
        settings.touch()
        self.environment = dict(os.environ, COLUMNS="80", HOME=self.home.name, LC_ALL="C.UTF-8",
                                EXAMPLES=str(ROOT / "examples"),
                                TVRNG_SETTINGS=str(settings),
                                PATH=f"{self.tvrng.parent}:{os.environ['PATH']}")

    def run(self, arguments, text=""):
        done = subprocess.run(arguments, input=text.encode("utf-8", "surrogateescape"),
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIMEOUT,
                              cwd=self.home.name, env=self.environment)
        return done.stdout.decode("utf-8", "replace"), done.returncode

    def session(self, expected):
        text = "".join(line[2:] + "\n" for line in expected.splitlines()
                       if line.startswith(("> ", ". ")))
        output, status = self.run([self.tvrng, "-i"], text)
        return output + (f"[status {status}]\n" if status else "")

    def commands(self, expected):
        output = ""
        for line in expected.splitlines():
            if line.startswith("$ "):
                got, status = self.run(["bash", "-c", line[2:]])
                if got and not got.endswith("\n"):
                    got += "\n"
                output += line + "\n" + got + (f"[status {status}]\n" if status else "")
        return output


def matches(expected, actual):
    wanted, got = expected.splitlines(), actual.splitlines()
    return len(wanted) == len(got) and all(
        re.fullmatch(".*".join(map(re.escape, line.split("<...>"))), other)
        for line, other in zip(wanted, got))


def report(name, expected, actual):
    if matches(expected, actual):
        return True
    print(f"{name}: differs")
    sys.stdout.writelines(difflib.unified_diff(
        [line + "\n" for line in expected.splitlines()],
        [line + "\n" for line in actual.splitlines()], "expected", "actual"))
    return False


def check_transcript(runner, path, update):
    lines = path.read_text(encoding="utf-8").splitlines(keepends=True)
    start = next((i for i, line in enumerate(lines) if not line.startswith("#")), len(lines))
    expected = "".join(lines[start:])
    play = runner.commands if expected.startswith("$ ") else runner.session
    actual = play(expected)
    if update and not matches(expected, actual):
        path.write_text("".join(lines[:start]) + actual, encoding="utf-8")
        return True
    return report(path, expected, actual)


def check_program(runner, path):
    output, status = runner.run([runner.tvrng, path.resolve()])
    if status != 0:
        print(f"{path}:\n{output}[status {status}]")
        return False
    return True


def main(arguments):
    update = "--update" in arguments
    arguments = [a for a in arguments if a != "--update"]
    runner = Runner(arguments[0])
    good = True
    for name in arguments[1:]:
        path = pathlib.Path(name)
        check = {".txt": lambda: check_transcript(runner, path, update),
                 ".tv": lambda: check_program(runner, path)}[path.suffix]
        good = check() and good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
