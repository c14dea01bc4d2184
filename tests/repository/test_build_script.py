"""The script that brings the build tree up to date, in a small tree of its own: silent when there is
nothing to do, and not content with what its first configure found."""

import importlib.util
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROJECT = """
cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
file(GLOB parts CONFIGURE_DEPENDS *.part)
add_custom_command(OUTPUT whole COMMAND ${{CMAKE_COMMAND}} -E cat ${{parts}} >whole DEPENDS ${{parts}})
add_custom_target(parts ALL DEPENDS whole)
# What the Python package sees of the tree around it.
include(GNUInstallDirs)
include({root}/cmake/TvRooms.cmake)
foreach(library tvmathrng tvhost tfl_rng)
  add_library(${{library}} INTERFACE)
endforeach()
add_executable(tvrng IMPORTED)
set_property(TARGET tvrng PROPERTY IMPORTED_LOCATION /bin/true)
set(TV_TESTS ON)
set(Python3_EXECUTABLE {python})
add_subdirectory({root}/python python EXCLUDE_FROM_ALL)
"""
PRESETS = """{"version": 4, "configurePresets": [
  {"name": "release", "generator": "Ninja", "binaryDir": "${sourceDir}/build"}]}"""


class BuildScript(unittest.TestCase):
    def setUp(self):
        self.tree = pathlib.Path(tempfile.mkdtemp()).resolve()
        self.addCleanup(shutil.rmtree, self.tree)
        environment = self.tree / "env"
        subprocess.run([sys.executable, "-m", "venv", "--without-pip", environment], check=True)
        self.packages = next(environment.glob("lib/python3*/site-packages"))
        (self.tree / "tools").mkdir()
        shutil.copy(ROOT / "tools/build.sh", self.tree / "tools")
        install = self.tree / "tools/install_packages.sh"
        install.write_text("#!/bin/sh\n")
        install.chmod(0o755)
        self.write("CMakeLists.txt", PROJECT.format(root=ROOT, python=environment / "bin/python"))
        self.write("CMakePresets.json", PRESETS)
        self.write("1.part", "one")

    def write(self, name, text):
        (self.tree / name).write_text(text)

    def build(self):
        """Builds; returns what was said on the terminal, and what was made."""
        done = subprocess.run([self.tree / "tools/build.sh"], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, ""), done.stderr)
        return done.stderr, (self.tree / "build/whole").read_text()

    def test_it_says_nothing_when_there_is_nothing_to_do(self):
        self.assertIn("Configuring done", self.build()[0])
        self.assertEqual(self.build(), ("", "one"))
        self.write("1.part", "two")
        said, whole = self.build()
        self.assertEqual(whole, "two")
        self.assertNotIn("Configuring", said)

    def test_sources_that_come_later_are_built(self):
        self.build()
        self.write("2.part", "more")
        self.assertEqual(self.build()[1], "onemore")
        self.assertEqual(self.build()[0], "")

    def test_a_list_that_is_wrong_is_told(self):
        self.build()
        self.write("CMakeLists.txt", "message(FATAL_ERROR nonsense)")
        done = subprocess.run([self.tree / "tools/build.sh"], capture_output=True, text=True)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("nonsense", done.stderr)

    @unittest.skipUnless(importlib.util.find_spec("numpy"), "this Python has no NumPy to be found")
    def test_packages_that_are_installed_later_are_noticed(self):
        said, _ = self.build()
        self.assertRegex(said, "Python package: skipped, .*/env/bin/python has no NumPy")
        folder = pathlib.Path(importlib.util.find_spec("numpy").origin).parents[1]
        (self.packages / "later.pth").write_text(f"{folder}\n")
        said, _ = self.build()
        self.assertIn("Python package: ", said)
        self.assertNotIn("no NumPy", said)


if __name__ == "__main__":
    unittest.main()
