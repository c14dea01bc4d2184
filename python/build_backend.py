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


def write_wheel(wheel, files):
    """Packs the files and, as the format wants it last, the list of them with their hashes."""
    record = []
    with zipfile.ZipFile(wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, content in files:
            archive.writestr(name, content)
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=")
            record.append(f"{name},sha256={digest.decode()},{len(content)}\n")
        archive.writestr(f"{INFO}/RECORD", "".join(record) + f"{INFO}/RECORD,,\n")


VERSION = re.search(
    r"project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
)[1]
ABI = f"cp{sys.version_info.major}{sys.version_info.minor}"
TAG = f"{ABI}-{ABI}-" + re.sub(r"[-.]", "_", sysconfig.get_platform())
INFO = f"tvmathrng-{VERSION}.dist-info"


def prepare_metadata_for_build_wheel(metadata_directory, config_settings=None):
    """The hook by which pip learns what the wheel will need, before anything is compiled."""
    folder = pathlib.Path(metadata_directory, INFO)
    folder.mkdir()
    (folder / "METADATA").write_text(METADATA.format(version=VERSION), encoding="utf-8")
    (folder / "WHEEL").write_text(WHEEL.format(tag=TAG), encoding="utf-8")
    return INFO


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """The hook that compiles and packs; returns the file name of the wheel."""
    tree = build((config_settings or {}).get("build-dir"))
    name = f"tvmathrng-{VERSION}-{TAG}.whl"
    with tempfile.TemporaryDirectory() as folder:
        stage = pathlib.Path(folder)
        run("cmake", "--install", tree, "--component", "python_wheel", "--prefix", stage, "--strip")
        prepare_metadata_for_build_wheel(stage)
        write_wheel(pathlib.Path(wheel_directory, name), files_of(stage))
    return name
