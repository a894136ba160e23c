# SPDX-License-Identifier: MIT
"""What a call that waits with others costs its thread, as a multiple of Qt's asyncCall().

Instructions are counted, no time is measured.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)
FEW, MANY = 100, 600

MOST_OF_A_CALL_BY_HAND = 1.05


def instructions_of_the_thread(way, calls):
    with tempfile.TemporaryDirectory() as directory:
        profile = pathlib.Path(directory) / "profile"
        subprocess.run(["valgrind", "--tool=callgrind", "--separate-threads=yes",
                        f"--callgrind-out-file={profile}", PROGRAM, way, str(calls)],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
        first = profile.with_name("profile-01").read_text()
        return int(re.search(r"^totals: (\d+)$", first, re.MULTILINE).group(1))


def instructions_of_a_call(way):
    more = instructions_of_the_thread(way, MANY) - instructions_of_the_thread(way, FEW)
    return more / (MANY - FEW)


class Cost(unittest.TestCase):
    def test_instructions_of_a_call(self):
        by_hand = instructions_of_a_call("hand")
        for way in ("library", "queue"):
            with self.subTest(way):
                ratio = instructions_of_a_call(way) / by_hand
                print(f"{way}: {ratio:.3f} of {by_hand:.0f}, at most {MOST_OF_A_CALL_BY_HAND}")
                self.assertLessEqual(ratio, MOST_OF_A_CALL_BY_HAND)


if __name__ == "__main__":
    unittest.main()
