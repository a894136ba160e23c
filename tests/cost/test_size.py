# SPDX-License-Identifier: MIT
"""The library is small enough for the controller: its text and data on 32-bit ARM."""

import subprocess
import sys
import unittest

LIBRARY, SIZE = sys.argv[1:]
del sys.argv[1:]

MOST_BYTES = 224 * 1024


class Size(unittest.TestCase):
    def test_of_text_and_data(self):
        report = subprocess.run([SIZE, LIBRARY], capture_output=True, text=True, check=True).stdout
        text, data = map(int, report.splitlines()[1].split()[:2])
        print(f"text and data: {text + data} bytes, at most {MOST_BYTES}")
        self.assertLessEqual(text + data, MOST_BYTES)


if __name__ == "__main__":
    unittest.main()
