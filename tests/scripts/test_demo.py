#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""scripts/demo shows the library at work, and leaves no process behind however it ends."""

import os
import pathlib
import signal
import subprocess
import unittest

DEMO = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "demo"


class Demo(unittest.TestCase):
    def start(self):
        # A session of its own: what belongs to the demo can be told from everything else.
        demo = subprocess.Popen([DEMO], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True, start_new_session=True)
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

    def test_shows_the_library_from_start_to_end(self):
        demo = self.start()
        output, _ = demo.communicate(timeout=200)
        self.assertEqual(demo.returncode, 0, output)
        self.assertIn("\nconnected()", output)
        self.assertTrue(output.endswith("Done.\n"), output)
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


if __name__ == "__main__":
    unittest.main(verbosity=2)
