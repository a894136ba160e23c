#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs what a guide shows, against a simulated embosser, and compares what it prints."""

import argparse
import contextlib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import guide


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("guide", type=pathlib.Path)
    parser.add_argument("--program", help="that of the guide's C++ blocks")
    parser.add_argument("--path", required=True, help="the folders of embosserctl and the simulator")
    arguments = parser.parse_args()
    blocks = list(guide.blocks(arguments.guide.read_text(encoding="utf-8")))
    if not blocks:
        sys.exit("nothing of the guide is run")
    environment = {**os.environ, "PATH": f"{arguments.path}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
    # Neither colours nor journal: what is printed is compared.
    environment |= {"NO_COLOR": "1", "QT_FORCE_STDERR_LOGGING": "1"}
    failures = 0
    with tempfile.TemporaryDirectory() as folder, embosser(folder, environment):
        program_is_run = False
        for block in blocks:
            if block.language == "cpp" and not program_is_run:
                program_is_run = True
                expected = "".join(b.text for b in blocks if b.language == "text")
                failures += not prints([arguments.program], expected, folder, environment)
            elif block.language == "console":
                for command, expected in commands(block.text):
                    failures += not prints(["bash", "-c", command], expected, folder, environment)
    return 1 if failures else 0


@contextlib.contextmanager
def embosser(folder, environment):
    """A bus and a simulated embosser for the programs that bring none."""
    bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", f"--address=unix:dir={folder}",
                            "--print-address"], stdout=subprocess.PIPE, text=True)
    try:
        environment["DBUS_SYSTEM_BUS_ADDRESS"] = bus.stdout.readline().strip()
        service = subprocess.Popen(["embosser-simulator", "--model", "Dovrik"], env=environment,
                                   stdout=subprocess.PIPE, text=True)
        try:
            service.stdout.readline()
            yield
        finally:
            service.terminate()
            service.wait()
    finally:
        bus.terminate()
        bus.wait()


def commands(text):
    """Each command of a console block with what it prints."""
    for part in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]:
        command, _, expected = part.partition("\n")
        yield command, expected


def prints(command, expected, folder, environment):
    run = subprocess.run(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    pattern = re.sub(r"^\\.\\.\\.\\\n", r"(?:.*\\n)*?", re.escape(expected), flags=re.MULTILINE)
    pattern = pattern.replace(re.escape("..."), ".*")
    is_as_expected = run.returncode == 0 and re.fullmatch(pattern, run.stdout)
    if not is_as_expected:
        print(f"$ {' '.join(command)}\n{run.stdout}[exit status {run.returncode}]; expected:\n{expected}")
    return is_as_expected


if __name__ == "__main__":
    sys.exit(main())
