"""What the install script does on systems with other packages and other rights, with the system's
commands replaced by scripts that note their calls."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tools/install_packages.sh"
BUILD_PACKAGES = [
    package
    for line in (ROOT / "tools/packages.txt").read_text().splitlines()
    if line.startswith("build: ")
    for package in line.split()[1:]
]


def run_script(installed, user, with_sudo=False, with_dpkg=True, group="build"):
    """Returns the script's status, its output and error texts, and the calls of apt-get."""
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        for tool in ("sh", "dirname", "sed", "tr", "grep", "env"):
            (folder / tool).symlink_to(shutil.which(tool))

        def fake(name, body):
            path = folder / name
            path.write_text(f"#!/bin/sh\n{body}\n")
            path.chmod(0o755)

        fake("id", f"echo {user}")
        fake("apt-get", f'echo "$@" >>{folder}/calls; echo chatter')
        if with_sudo:
            fake("sudo", f'echo sudo >>{folder}/calls; [ "$1" = -n ] && shift; [ "$1" = true ] || exec "$@"')
        if with_dpkg:
            # Packages that it does not know make dpkg-query fail after the others' lines.
            lines = "\n".join(f"echo installed {package}" for package in installed)
            fake("dpkg-query", f"{lines}\necho config-files ninja-build\nexit 1")
        done = subprocess.run(
            [SCRIPT, group],
            env={**os.environ, "PATH": str(folder)},
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
        )
        calls = folder / "calls"
        return (
            done.returncode,
            done.stdout,
            done.stderr,
            calls.read_text().splitlines() if calls.exists() else [],
        )


class InstallPackages(unittest.TestCase):
    def test_nothing_is_called_or_said_when_all_is_there(self):
        self.assertEqual(run_script(BUILD_PACKAGES, user=0), (0, "", "", []))

    def test_root_installs_what_is_missing_and_keeps_standard_output_clean(self):
        present = [p for p in BUILD_PACKAGES if p not in ("cmake", "ninja-build")]
        status, out, err, calls = run_script(present, user=0)
        self.assertEqual((status, out), (0, ""))
        self.assertIn("chatter", err)
        self.assertEqual(
            calls, ["update", "install -y --no-install-recommends cmake ninja-build"]
        )

    def test_a_user_with_sudo_installs_through_it(self):
        status, _, _, calls = run_script(BUILD_PACKAGES[1:], user=1000, with_sudo=True)
        self.assertEqual(status, 0)
        self.assertEqual(
            calls,
            ["sudo", "sudo", "update", "sudo"]
            + [f"install -y --no-install-recommends {BUILD_PACKAGES[0]}"],
        )

    def test_without_rights_the_command_is_printed_and_the_call_fails(self):
        status, out, err, calls = run_script(BUILD_PACKAGES[:-1], user=1000)
        self.assertEqual((status, out, calls), (1, "", []))
        self.assertIn(
            "apt-get update && apt-get install -y --no-install-recommends "
            + BUILD_PACKAGES[-1]
            + "\n",
            err,
        )

    def test_another_system_is_left_to_its_own_packages(self):
        self.assertEqual(run_script([], user=0, with_dpkg=False), (0, "", "", []))

    def test_an_unknown_group_is_an_error(self):
        status, _, err, calls = run_script(BUILD_PACKAGES, user=0, group="nosuch")
        self.assertEqual((status, calls), (2, []))
        self.assertIn("nosuch", err)


if __name__ == "__main__":
    unittest.main()
