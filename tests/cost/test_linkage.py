# SPDX-License-Identifier: MIT
"""What the loader has to do for the library."""

import re
import subprocess
import sys
import unittest

LIBRARY, NM, READELF = sys.argv[1:]
del sys.argv[1:]

# Programs compare the addresses of signals with the library's: they alone can be another's.
SIGNALS = {"connected()", "disconnected()"}


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


class Linkage(unittest.TestCase):
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
