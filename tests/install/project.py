# SPDX-License-Identifier: MIT
"""What the tests of the installation share."""

import os
import pathlib
import re
import subprocess

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ["BUILD_DIR"])
CACHE = (BUILD / "CMakeCache.txt").read_text()
VERSION = re.search(r"^CMAKE_PROJECT_VERSION:\w+=(.*)$", CACHE, re.MULTILINE).group(1)


def run(*command, **environment):
    """Runs a command and returns what it prints."""
    result = subprocess.run([str(part) for part in command], capture_output=True, text=True,
                            check=False, env=os.environ | environment)
    if result.returncode:
        raise AssertionError(f"{command} returned {result.returncode}\n"
                             f"{result.stdout}{result.stderr}")
    return result.stdout


def install(directory):
    """Stages the project in a directory, and returns the folder that is then its prefix."""
    run("cmake", "--install", BUILD, "--prefix", "/opt/embosser", DESTDIR=str(directory))
    return directory / "opt/embosser"
