# SPDX-License-Identifier: MIT
"""The libraries are small enough for the controller: their text and data on 32-bit ARM."""

import pathlib
import subprocess
import sys
import unittest

SIZE, *LIBRARIES = sys.argv[1:]
del sys.argv[1:]

MOST_BYTES = {"libconfigurationmanager": 224 * 1024, "libconfigurationmanager-async": 48 * 1024}


class Size(unittest.TestCase):
    def test_of_text_and_data(self):
        for library in LIBRARIES:
            name = pathlib.Path(library).name.partition(".")[0]
            with self.subTest(name):
                report = subprocess.run([SIZE, library], capture_output=True, text=True,
                                        check=True).stdout
                text, data = map(int, report.splitlines()[1].split()[:2])
                print(f"{name}: {text + data} bytes, at most {MOST_BYTES[name]}")
                self.assertLessEqual(text + data, MOST_BYTES[name])


if __name__ == "__main__":
    unittest.main()
