# SPDX-License-Identifier: MIT
"""The libraries use nothing of Qt D-Bus that keeps the error of the connection without a lock."""

import re
import subprocess
import sys
import unittest

LIBRARIES = sys.argv[1:]

# Qt's blocking calls, whatever makes them, and the error itself.
UNSAFE = re.compile(r"""\b(
    QDBusAbstractInterface::call(WithArgumentList|WithCallback)?\(
    |QDBusAbstractInterface::internalConstCall\(
    |QDBusConnection::(call|callWithCallback|interface|lastError)\(
    |QDBusConnectionInterface::
    |QDBusInterface::
    )""", re.VERBOSE)


class BlockingCalls(unittest.TestCase):
    def test_libraries_use_none(self):
        for library in LIBRARIES:
            with self.subTest(library):
                needed = subprocess.run(
                    ["nm", "--dynamic", "--undefined-only", "--demangle", library],
                    capture_output=True, text=True, check=True).stdout
                self.assertIn("QDBusPendingCall::waitForFinished()", needed)
                self.assertEqual([line for line in needed.splitlines() if UNSAFE.search(line)], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
