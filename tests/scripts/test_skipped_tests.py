# SPDX-License-Identifier: MIT
"""Tests that were skipped are listed with their reasons."""

import pathlib
import subprocess
import unittest

PROGRAM = pathlib.Path(__file__).resolve().parents[2] / "scripts/skipped-tests.awk"

QTEST = """\
Start testing of Ctest: Nov 21 16:00 UTC
----------------------------------------------------------
2/45 Testing: tst_systembus
2/45 Test: tst_systembus
Output:
----------------------------------------------------------
********* Start testing of TestSystemBus *********
PASS   : TestSystemBus::initTestCase()
SKIP   : TestSystemBus::thePolicyIsInForce(dbus-broker) needs root (or a container's)
   Loc: [tests/simulator/tst_systembus.cpp(158)]
SKIP   : TestSystemBus::itIsInstalled() there is no systemd
Totals: 5 passed, 0 failed, 2 skipped, 0 blacklisted, 3016ms
<end of output>
"""

UNITTEST = """\
13/45 Testing: test_consumers
test_with_qmake (__main__.Consumers.test_with_qmake) ... skipped 'no "qmake" here'
test_with_cmake (__main__.Consumers.test_with_cmake) ... ok
setUpClass (__main__.Others) ... skipped "it's another machine"
OK (skipped=2)
"""


class SkippedTests(unittest.TestCase):
    def assert_listed(self, log, *lines):
        listed = subprocess.run(["awk", "-f", PROGRAM], input=log, capture_output=True, text=True,
                                check=True).stdout
        self.assertEqual(listed, "".join(line + "\n" for line in lines))

    def test_of_qtest(self):
        self.assert_listed(
            QTEST,
            "tst_systembus thePolicyIsInForce: needs root (or a container's)",
            "tst_systembus itIsInstalled: there is no systemd")

    def test_of_unittest(self):
        self.assert_listed(
            UNITTEST,
            'test_consumers test_with_qmake: no "qmake" here',
            "test_consumers setUpClass: it's another machine")

    def test_whole_ones(self):
        self.assert_listed("9/45 Testing: test_symbols\nSKIPPED: not with the sanitizers\n",
                           "test_symbols: not with the sanitizers")

    def test_are_missed_nowhere(self):
        self.assert_listed("1/2 Testing: test_a\n.s\nOK (skipped=1)\n2/2 Testing: test_b\n.\nOK\n",
                           "test_a: some of it, and unittest.main(verbosity=2) would say what")

    def test_are_none_where_all_have_run(self):
        self.assert_listed("1/2 Testing: tst_a\nPASS   : TestA::skipped()\n"
                           "Totals: 3 passed, 0 failed, 0 skipped, 0 blacklisted, 1ms\n")


if __name__ == "__main__":
    unittest.main(verbosity=2)
