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
sys.path.insert(0, f"{SOURCE}/tests/documents")
from blocks import all_blocks
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

    def test_the_documented_project_links(self):
        block = next(b for b in all_blocks() if b.kind == "cmake")
        project = self.folder / "documented"
        project.mkdir()
        (project / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(documented LANGUAGES C CXX)\n"
            f"add_executable(program {SOURCE}/examples/work_items.cpp)\n"
            f"add_executable(other {SOURCE}/examples/from_c.c)\n{block.text}")
        run("cmake", "-G", "Ninja", "-S", project, "-B", project / "build",
            f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_C_COMPILER={CC}",
            f"-DCMAKE_CXX_COMPILER={CXX}")
        run("cmake", "--build", project / "build")

    def test_users_flags_find_nothing_to_warn_of(self):
        flags = "-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fsyntax-only".split()
        unit = self.folder / "user"
        for compilers, standard, text in (
                (("g++", "clang++"), "c++20",
                 "#include <tvmathrng/random.h>\n#include <tvmathrng/runtime/vm.h>\n"
                 "int main() { tvmathrng::Stream s(\"philox\"); tvmathrng::Bits bits(s);\n"
                 "return int(s.integers<long long>({0, 9}, 3)[0]) + int(s.sample(1, tvmathrng::Population"
                 "{9})[0]) + int(bits()); }\n"),
                (("gcc", "clang"), "c99", "#include <tvmathrng/tvmathrng.h>\n")):
            unit.write_text(text)
            for compiler in filter(shutil.which, compilers):
                language = "c++" if "++" in standard else "c"
                run(compiler, f"-std={standard}", *flags, f"-I{self.prefix}/include", "-x", language,
                    unit)

    def test_an_older_standard_is_told_in_a_sentence(self):
        unit = self.folder / "old.cpp"
        for header in ("random", "stream", "bits", "values", "error"):
            unit.write_text(f"#include <tvmathrng/{header}.h>\n")
            done = subprocess.run([CXX, "-std=c++17", "-fsyntax-only", f"-I{self.prefix}/include",
                                   unit], capture_output=True, text=True)
            self.assertIn("compile with -std=c++20", done.stderr)
            self.assertEqual(done.stderr.count("error:"), 2, done.stderr)

    def test_what_run_builds_is_enough_to_install(self):
        commands = run("ninja", "-C", BUILD, "-t", "commands", "tvrng")
        script = pathlib.Path(BUILD, "cmake_install.cmake").read_text()
        files = set(re.findall(rf'"{re.escape(BUILD)}/((?:lib|bin|include)/[^"$]+)"', script))
        self.assertGreaterEqual(len(files), 6)
        for file in files:
            self.assertIn({"include/tvmathrng": "include/headers.stamp"}.get(file, file), commands)

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
