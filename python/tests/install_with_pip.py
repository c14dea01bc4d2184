"""What the guide's page tells newcomers to type, in an environment that is thrown away.

    install_with_pip.py SOURCE BUILD    ends with 77 where pip or venv is missing

No index is asked, and the installed package must stand on its own: the build tree is out of reach.
"""

import importlib.util
import pathlib
import subprocess
import sys
import tempfile

SKIPPED = 77
PROGRAM = """
import pathlib, numpy as np, tvmathrng as tv
print(pathlib.Path(tv.__file__).parent)
maps = open("/proc/self/maps").read()
print({line.split()[-1] for line in maps.splitlines() if "libtvmathrng" in line}.pop())
print(np.random.Generator(tv.RandStream("philox4x32_10", seed=7).bit_generator()).random())
"""

source, build = map(pathlib.Path, sys.argv[1:])
if not all(importlib.util.find_spec(module) for module in ("pip", "venv")):
    sys.exit(SKIPPED)
with tempfile.TemporaryDirectory() as folder:
    folder = pathlib.Path(folder).resolve()
    subprocess.run(
        [sys.executable, "-m", "venv", "--system-site-packages", "--without-pip", folder / "env"],
        check=True,
    )
    python = folder / "env/bin/python"
    subprocess.run(
        [sys.executable, "-m", "pip", "--python", python, "install", "--no-index", "--disable-pip-version-check",
         "--config-settings", f"build-dir={build}", source / "python"],
        check=True,
    )
    said = subprocess.run(
        [python, "-c", PROGRAM], cwd=folder, check=True, capture_output=True, text=True
    ).stdout.split()
package = pathlib.Path(said[0])
assert package.is_relative_to(folder / "env"), said
assert pathlib.Path(said[1]).parent == package, f"loads the library from {said[1]}"
# The first number of this stream, as the shell draws it.
assert said[2].startswith("0.99281"), said
