# SPDX-License-Identifier: MIT
"""What one manager costs a program that is connected to the bus, from the start of the program."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

WITH_BUS, WITH_MANAGER = sys.argv[1:]
del sys.argv[1:]

# The loader's work for the two libraries included; of the main thread.
MOST_INSTRUCTIONS = 1_200_000
# Anonymous memory, in KiB: the figure is 28, and a page more is not ours.
MOST_MEMORY = 32
# Now and then a thread of Qt's takes a page more meanwhile.
STARTS = 25

LIBRARIES = re.compile(r"/lib(configurationmanager|tavelorn)\.so")


def anonymous_memory(process, what=re.compile("")):
    memory, is_counted = 0, False
    for line in pathlib.Path(f"/proc/{process.pid}/smaps").read_text().splitlines():
        name, *fields = line.split()
        if not name.endswith(":"):
            is_counted = what.search(line)
        elif name == "Anonymous:" and is_counted:
            memory += int(fields[0])
    return memory


class Start(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.bus = subprocess.Popen(
            ["dbus-daemon", "--nofork", "--print-address", "--session",
             f"--address=unix:path={cls.directory}/bus"], stdout=subprocess.PIPE, text=True)
        cls.addClassCleanup(cls.end_bus)
        cls.environment = dict(os.environ,
                               DBUS_SYSTEM_BUS_ADDRESS=cls.bus.stdout.readline().strip())

    @classmethod
    def end_bus(cls):
        cls.bus.kill()
        cls.bus.communicate()

    def instructions(self, program):
        profile = pathlib.Path(self.directory, "profile")
        subprocess.run(["valgrind", "--tool=callgrind", "--separate-threads=yes",
                        f"--callgrind-out-file={profile}", program],
                       env=self.environment, stdin=subprocess.DEVNULL, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        of_main_thread = pathlib.Path(f"{profile}-01").read_text()
        return int(re.search(r"^totals: (\d+)", of_main_thread, re.MULTILINE).group(1))

    def memory(self):
        with subprocess.Popen([WITH_MANAGER], env=self.environment, text=True,
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.readline(), "connected\n")
            connected = anonymous_memory(process) - anonymous_memory(process, LIBRARIES)
            process.stdin.write("\n")
            process.stdin.flush()
            self.assertEqual(process.stdout.readline(), "made\n")
            return anonymous_memory(process) - connected

    def test_instructions(self):
        added = self.instructions(WITH_MANAGER) - self.instructions(WITH_BUS)
        print(f"instructions of the first manager: {added}, at most {MOST_INSTRUCTIONS}")
        self.assertLessEqual(added, MOST_INSTRUCTIONS)

    def test_memory(self):
        added = min(self.memory() for _ in range(STARTS))
        print(f"anonymous memory of the first manager: {added} KiB, at most {MOST_MEMORY}")
        self.assertLessEqual(added, MOST_MEMORY)


if __name__ == "__main__":
    unittest.main()
