# SPDX-License-Identifier: MIT
"""Scripts install the packages that are missing, or name them and stop."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"
NAMES = sorted(file.name for file in SCRIPTS.iterdir()
               if file.is_file() and os.access(file, os.X_OK))


class MissingPackages(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        # A system where nothing is installed, and the user is not root.
        self.write("dpkg-query", "exit 1")
        self.write("id", "echo 1000")

    def write(self, program, text):
        file = self.directory / program
        file.write_text(f"#!/bin/sh\n{text}\n")
        file.chmod(0o755)

    def run_script(self, name, *arguments):
        path = f"{self.directory}:{os.environ['PATH']}"
        return subprocess.run([SCRIPTS / name, *arguments], stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False,
                              env=os.environ | {"PATH": path})

    def test_are_named_without_root_and_sudo(self):
        self.write("sudo", "exit 1")
        for name in NAMES:
            with self.subTest(name):
                result = self.run_script(name)
                self.assertEqual(result.returncode, 1)
                self.assertEqual(result.stdout, "")
                self.assertRegex(result.stderr,
                                 rf"\A{name}: neither root nor sudo; please install: \w.*\n\Z")

    def test_are_installed_with_sudo(self):
        calls = self.directory / "calls"
        self.write("sudo", f'echo "$*" >>{calls}')
        result = self.run_script("generate", "--check")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout, "Installing: python3\n")
        self.assertRegex(calls.read_text(),
                         r"\A--non-interactive true\n"
                         r"--non-interactive apt-get update .*\n"
                         r"--non-interactive env .* apt-get install .* python3\n\Z")


if __name__ == "__main__":
    unittest.main(verbosity=2)
