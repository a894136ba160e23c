#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""scripts/demo shows the library at work, and leaves no process behind however it ends."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import unittest

DEMO = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "demo"


class Demo(unittest.TestCase):
    def start(self, *arguments, **options):
        # A session of its own: what belongs to the demo can be told from everything else.
        demo = subprocess.Popen([DEMO, *arguments],
                                **{"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                                   "stderr": subprocess.STDOUT, "text": True,
                                   "start_new_session": True} | options)
        self.addCleanup(demo.stdout.close)
        return demo

    def assert_nothing_left(self, session):
        left = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                fields = (process / "stat").read_text().rpartition(")")[2].split()
                command = (process / "cmdline").read_text().replace("\0", " ")
            except (FileNotFoundError, ProcessLookupError):
                continue
            if int(fields[3]) == session:
                left.append(command)
        self.assertEqual(left, [])

    def assert_is_what_the_readme_shows(self, output):
        readme = (DEMO.parents[1] / "README.md").read_text(encoding="utf-8")
        shown = re.search(r"^\$ scripts/demo\n(.*?)^```", readme, re.DOTALL | re.MULTILINE)[1]
        lines = iter(output.splitlines())
        for line in shown.splitlines():
            self.assertTrue(line == "..." or line in lines, f"{line!r} is not there in its place")

    def test_shows_the_library_from_start_to_end(self):
        demo = self.start()
        output, _ = demo.communicate(timeout=200)
        self.assertEqual(demo.returncode, 0, output)
        self.assertIn("\nconnected()", output)
        self.assertTrue(output.endswith("Done.\n"), output)
        self.assert_is_what_the_readme_shows(output)
        self.assert_nothing_left(demo.pid)

    def test_ends_at_once_on_ctrl_c_wherever_it_is(self):
        for moment in ("on the bus as", "== The geometry", "disconnected()"):
            with self.subTest(moment=moment):
                demo = self.start()
                for line in demo.stdout:
                    if moment in line:
                        break
                else:
                    self.fail("that moment never came")
                # What a terminal does: it signals every process in the foreground.
                os.killpg(demo.pid, signal.SIGINT)
                demo.communicate(timeout=200)
                self.assertEqual(demo.returncode, 130)
                self.assert_nothing_left(demo.pid)

    def test_leaves_a_shell_that_completes_and_has_the_manual_pages(self):
        questions = {
            "bash": "complete -p embosserctl embosser-simulator",
            "zsh": "print -r -- $_comps[embosserctl] $_comps[embosser-simulator]",
        }
        for name, question in questions.items():
            with self.subTest(shell=name):
                demo = self.start("--shell", stdin=subprocess.PIPE,
                                  env=os.environ | {"SHELL": shutil.which(name)})
                output, _ = demo.communicate(
                    f"{question}\nls ${{MANPATH%:}}/man1/\necho \"<$PS1>\"\n"
                    "embosserctl get Model\nexit\n", timeout=200)
                self.assertEqual(demo.returncode, 0, output)
                for expected in ("_embosserctl", "_embosser", "embosser-simulator.1",
                                 "embosserctl.1", "<(embosser) ", "Dovrik V5\n"):
                    self.assertIn(expected, output)
                self.assert_nothing_left(demo.pid)


if __name__ == "__main__":
    unittest.main(verbosity=2)
