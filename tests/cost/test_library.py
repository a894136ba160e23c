# SPDX-License-Identifier: MIT
"""What the library itself costs: its size on 32-bit ARM, and what the loader has to do for it."""

import re
import subprocess
import sys
import unittest

LIBRARY, NM, READELF, SIZE = sys.argv[1:]
del sys.argv[1:]

MOST_BYTES_ON_ARM = 224 * 1024

# Programs compare the addresses of signals with the library's: they alone can be another's.
SIGNALS = {"connected()", "disconnected()"}


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


class Library(unittest.TestCase):
    def test_is_small_enough_for_the_controller(self):
        if "ARM" not in run(READELF, "--file-header", LIBRARY):
            self.skipTest("measured on 32-bit ARM only")
        text, data, *_ = map(int, run(SIZE, LIBRARY).splitlines()[1].split()[:3])
        print(f"text and data: {text + data} bytes, at most {MOST_BYTES_ON_ARM}")
        self.assertLessEqual(text + data, MOST_BYTES_ON_ARM)

    def test_calls_its_own_functions_directly(self):
        exported = {line.split()[0] for line in
                    run(NM, "--dynamic", "--defined-only", "--format=posix", LIBRARY).splitlines()}
        relocated = set(re.findall(r"JU?MP_SLOT?\S*\s+\S+\s+(\S+)",
                                   run(READELF, "--relocs", "--wide", LIBRARY)))
        own = subprocess.run(["c++filt"], input="\n".join(relocated & exported), text=True,
                             capture_output=True, check=True).stdout.split("\n")
        names = {name.rpartition("::")[2] for name in own if name}
        print(f"jump slots: {len(relocated)}, for the library's own functions: {sorted(names)}")
        self.assertGreater(len(relocated), 50)
        self.assertLessEqual(names, SIGNALS)


if __name__ == "__main__":
    unittest.main()
