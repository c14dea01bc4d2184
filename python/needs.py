"""Tells CMake what the Python that runs this has of what the package needs, as JSON: the interpreter,
the folder of NumPy's headers, the folder of pybind11's CMake files if it came as a module, what is
missing to build and to test, and the folders in which that would appear.
"""

import importlib
import json
import pathlib
import site
import sys
import sysconfig


def load(name):
    try:
        return importlib.import_module(name)
    except Exception:  # a broken installation is none
        return None


numpy, pybind11 = load("numpy"), load("pybind11")
include = numpy.get_include() if numpy else ""
python_include = pathlib.Path(sysconfig.get_path("platinclude"))
needs = {
    "NumPy": numpy,
    "headers of NumPy": not numpy or pathlib.Path(include, "numpy/random/bitgen.h").exists(),
    "headers of Python": (python_include / "Python.h").exists(),
}
folders = {*site.getsitepackages(), site.getusersitepackages(), str(python_include.parent)}
print(
    json.dumps(
        {
            "executable": sys.executable,
            "numpy": include,
            "pybind11": pybind11.get_cmake_dir() if pybind11 else "",
            "missing": ", ".join(f"no {need}" for need, met in needs.items() if not met),
            "pytest": bool(load("pytest")),
            "folders": ";".join(sorted(filter(lambda folder: pathlib.Path(folder).is_dir(), folders))),
        }
    )
)
