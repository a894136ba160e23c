# SPDX-License-Identifier: MIT
"""What the loader has to do for the library."""

import pathlib
import re
import subprocess
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
LIBRARY, NM, READELF = sys.argv[1:]
del sys.argv[1:]

# Of both kinds of machine; most are the functions of other libraries that are called.
MOST_RELOCATIONS = 370

# Programs compare the addresses of signals with the library's: they alone can be another's.
SIGNALS = {"connected()", "disconnected()"}


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def exported_symbols():
    return {line.split()[0] for line in
            run(NM, "--dynamic", "--defined-only", "--format=posix", LIBRARY).splitlines()}


class Linkage(unittest.TestCase):
    def test_exports_what_is_written_down(self):
        text = next(PROJECT.glob("debian/libconfigurationmanager[0-9]*.symbols")).read_text()
        exported, limit = len(exported_symbols()), text.count("@Base")
        print(f"exported symbols: {exported}, at most {limit}")
        self.assertLessEqual(exported, limit)

    def test_has_few_relocations(self):
        relocations = re.findall(r"^[0-9a-f]+\s+[0-9a-f]+\s+R_",
                                 run(READELF, "--relocs", "--wide", LIBRARY), re.MULTILINE)
        print(f"relocations: {len(relocations)}, at most {MOST_RELOCATIONS}")
        self.assertGreater(len(relocations), 50)
        self.assertLessEqual(len(relocations), MOST_RELOCATIONS)

    def test_calls_its_own_functions_directly(self):
        relocated = set(re.findall(r"JU?MP_SLOT?\S*\s+\S+\s+(\S+)",
                                   run(READELF, "--relocs", "--wide", LIBRARY)))
        own = subprocess.run(["c++filt"], input="\n".join(relocated & exported_symbols()), text=True,
                             capture_output=True, check=True).stdout.split("\n")
        names = {name.rpartition("::")[2] for name in own if name}
        print(f"jump slots: {len(relocated)}, for the library's own functions: {sorted(names)},"
              f" at most {sorted(SIGNALS)}")
        self.assertGreater(len(relocated), 50)
        self.assertLessEqual(names, SIGNALS)


if __name__ == "__main__":
    unittest.main()
