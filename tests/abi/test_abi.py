#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Programs that were built with the released libraries go on working with these: the types of what
is exported, their sizes and the values of enumerators are those that *.abi.xz describes.

    test_abi.py LIBRARY...           compares
    test_abi.py --write LIBRARY...   describes anew, with a release

The libraries are to be built with debugging information."""

import lzma
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent


def description(library):
    return HERE / f"{pathlib.Path(library).name.partition('.')[0]}.abi.xz"


def write(library):
    text = subprocess.run(["abidw", "--exported-interfaces-only", "--no-show-locs",
                           "--no-parameter-names", "--no-comp-dir-path", "--no-corpus-path",
                           "--type-id-style", "hash", library],
                          stdout=subprocess.PIPE, check=True).stdout
    description(library).write_bytes(lzma.compress(text, preset=9))


class Abi(unittest.TestCase):
    def test_no_released_program_breaks(self):
        for library in LIBRARIES:
            with self.subTest(library=library), tempfile.NamedTemporaryFile(suffix=".abi") as file:
                file.write(lzma.decompress(description(library).read_bytes()))
                file.flush()
                outcome = subprocess.run(["abidiff", "--no-show-locs", "--no-added-syms",
                                          "--fail-no-debug-info", file.name, library],
                                         capture_output=True, text=True)
                self.assertEqual(outcome.returncode, 0, outcome.stdout + outcome.stderr)


if __name__ == "__main__":
    if sys.argv[1] == "--write":
        for library in sys.argv[2:]:
            write(library)
    else:
        LIBRARIES = sys.argv[1:]
        unittest.main(argv=sys.argv[:1])
