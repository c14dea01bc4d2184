"""Builds the wheel of tvmathrng for pip: compiles the library with CMake, packs what it installs.

    pip install ./python
    pip install --config-settings build-dir=DIR ./python    use the CMake build tree DIR

Without a build tree of the caller's it makes one, out/python. Needs the Debian packages of the
groups build and python of tools/packages.txt, and no network.
"""

import base64
import hashlib
import os
import pathlib
import re
import subprocess
import sys
import sysconfig
import tempfile
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
METADATA = """Metadata-Version: 2.1
Name: tvmathrng
Version: {version}
Summary: Random numbers that are the same on every machine, for NumPy
Requires-Python: >=3.9
Requires-Dist: numpy
"""
WHEEL = """Wheel-Version: 1.0
Generator: tvmathrng
Root-Is-Purelib: false
Tag: {tag}
"""


def run(*command):
    """Runs a command without the search path that hides the system's packages from pip's builds."""
    environment = {name: os.environ[name] for name in os.environ if not name.startswith("PYTHON")}
    done = subprocess.run(
        command, cwd=ROOT, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
    )
    print(done.stdout)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} failed. tools/install_packages.sh build python "
                 "installs what the build needs on Debian.")


def build(given):
    """Returns the build tree, with the extension module up to date."""
    if given:
        tree = pathlib.Path(given).resolve()
    else:
        tree = ROOT / "out/python"
        run("cmake", "--preset", "python", f"-DPython3_EXECUTABLE={sys.executable}")
    run("cmake", "--build", tree, "--target", "tvpython")
    return tree


def files_of(stage):
    """Yields (name in the wheel, content) for each installed file, libraries by their sonames."""
    links = [path for path in stage.rglob("*") if path.is_symlink()]
    targets = {path.resolve() for path in links}
    for path in sorted(stage.rglob("*")):
        if path.is_file() and (path.is_symlink() or path.resolve() not in targets):
            yield path.relative_to(stage).as_posix(), path.read_bytes()


def write_wheel(wheel, files, info):
    """Packs the files and, as the format wants it last, the list of them with their hashes."""
    record = []
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files:
            archive.writestr(name, content)
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=")
            record.append(f"{name},sha256={digest.decode()},{len(content)}\n")
        archive.writestr(f"{info}/RECORD", "".join(record) + f"{info}/RECORD,,\n")


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """The hook that pip calls; returns the file name of the wheel."""
    if not (ROOT / "CMakeLists.txt").is_file():
        sys.exit(f"{ROOT} is not the source tree of tvmathrng; install from its folder python")
    version = re.search(r"project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1]
    abi = f"cp{sys.version_info.major}{sys.version_info.minor}"
    tag = f"{abi}-{abi}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())
    info = f"tvmathrng-{version}.dist-info"
    name = f"tvmathrng-{version}-{tag}.whl"

    tree = build((config_settings or {}).get("build-dir"))
    with tempfile.TemporaryDirectory() as stage:
        run("cmake", "--install", tree, "--component", "python_wheel", "--prefix", stage, "--strip")
        files = [
            *files_of(pathlib.Path(stage)),
            (f"{info}/METADATA", METADATA.format(version=version).encode()),
            (f"{info}/WHEEL", WHEEL.format(tag=tag).encode()),
        ]
        write_wheel(pathlib.Path(wheel_directory, name), files, info)
    return name
