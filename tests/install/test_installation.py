#!/usr/bin/env python3
"""Installs a build tree, moves the installation and uses it from there.

    test_installation.py SOURCE BUILD CC CXX
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE, BUILD, CC, CXX = sys.argv[1:5]
FOREIGN = re.compile(r"/(boost|oneapi|tbb|hwy|fmt|toml\+\+)/")


def run(*command, **environment):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, text=True,
                          stderr=subprocess.STDOUT, env=dict(os.environ, **environment))
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        run("cmake", "--install", BUILD, "--prefix", cls.folder / "first")
        cls.prefix = (cls.folder / "first").rename(cls.folder / "moved")
        cls.libraries = next(cls.prefix.glob("lib*/**/libtvmathrng.so")).parent

    def pkg_config(self, *arguments):
        return run("pkg-config", *arguments,
                   PKG_CONFIG_PATH=str(self.libraries / "pkgconfig")).split()

    def test_the_shell_runs(self):
        self.assertIn("0.81472368639317894",
                      run(self.prefix / "bin/tvrng", "--json", "-e", "rand"))

    def test_a_cmake_project_finds_it(self):
        build = self.folder / "consumer"
        run("cmake", "-G", "Ninja", "-S", f"{SOURCE}/examples", "-B", build,
            f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_COMPILER={CC}",
            f"-DCMAKE_CXX_COMPILER={CXX}", "-DCMAKE_DISABLE_FIND_PACKAGE_MPI=ON")
        run("cmake", "--build", build)
        for program in ("work_items", "host_language", "from_c"):
            linked = run("ldd", build / program)
            self.assertIn(f"{self.libraries}/libtvmathrng.so.0", linked)
            run(build / program)

    def test_pkg_config_finds_it(self):
        rpath = "-Wl,-rpath," + self.pkg_config("--variable=libdir", "tvmathrng")[0]
        for compiler, source, module in (
                ([CC, "-std=c99"], "from_c.c", "tvmathrng-runtime"),
                ([CXX, "-std=c++20", "-pthread"], "work_items.cpp", "tvmathrng")):
            program = self.folder / "program"
            run(*compiler, f"{SOURCE}/examples/{source}", "-o", program, rpath,
                *self.pkg_config("--cflags", "--libs", module))
            run(program)

    def test_headers_need_nothing_but_themselves(self):
        headers = sorted((self.prefix / "include").rglob("*.h"))
        unit = self.folder / "all.cpp"
        unit.write_text("".join(f'#include "{header}"\n' for header in headers))
        # The marks of files in the preprocessed text: clang's -M also has those only asked after.
        text = run(CXX, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-E",
                   f"-I{self.prefix}/include", unit)
        needed = "\n".join(re.findall(r"^# \d+ .*", text, re.M))
        self.assertIn("/mr_functions.h", needed)
        self.assertNotIn(SOURCE, needed)
        self.assertIsNone(FOREIGN.search(needed))

    def test_nothing_names_the_place_it_was_built_or_installed_in(self):
        for file in self.libraries.rglob("*"):
            if file.suffix in (".cmake", ".pc"):
                for place in (SOURCE, f"{self.folder}/first"):
                    self.assertNotIn(place, file.read_text(), file)

    def test_libraries_carry_their_version(self):
        for library in ("tfl_rng", "tvhost", "tvmathrng", "tvruntime"):
            dynamic = run("readelf", "-d", self.libraries / f"lib{library}.so")
            self.assertRegex(dynamic, rf"SONAME.*lib{library}\.so\.\d+\]")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
