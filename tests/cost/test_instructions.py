# SPDX-License-Identifier: MIT
"""What a call of the library costs its thread beyond the same call made by hand with Qt D-Bus.

Instructions are counted, no time is measured. What sends, waits and frees a message is left out on
both sides: it depends on how the threads meet.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)
CALLS = 50
# Either thread may be the one that frees the arguments: the least counts.
RUNS = 3

# What a call may add. Two fifths of a getter's instructions, and the allocation, are for the name of
# the method, which stands in the meta-object as Latin-1.
MOST_INSTRUCTIONS = {"getter": 560, "setter": 720}
MOST_ALLOCATIONS = 1
MOST_INSTRUCTIONS_OF_AN_ENTRY = 250

# Where the threads meet.
LEFT_OUT = re.compile(r"QDBusAbstractInterface::asyncCallWithArgumentList|"
                      r"QDBusPendingCall::(waitForFinished|reply|~QDBusPendingCall)|"
                      r"QDBusMessage::~QDBusMessage")
COST = re.compile(r"\s*([\d,]+) \(.*?\)\s+(\S.*)")


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          check=True, **options)
    return done.stdout


def instructions(what, how):
    """Of one call, without what is left out."""
    with tempfile.TemporaryDirectory() as directory:
        profile = os.path.join(directory, "profile")
        run("valgrind", "--tool=callgrind", f"--callgrind-out-file={profile}",
            "--collect-atstart=no", f"--toggle-collect={how}*", PROGRAM, what)
        report = run("callgrind_annotate", "--tree=none", "--inclusive=yes", "--threshold=100",
                     profile)
    costs = {name: int(count.replace(",", ""))
             for count, name in (m.groups() for m in map(COST.match, report.splitlines()) if m)}
    total = next(count for name, count in costs.items() if how in name)
    outside = sum(count for name, count in costs.items() if LEFT_OUT.search(name))
    return (total - outside) / CALLS


def added_instructions(what):
    return min(instructions(what, "callByLibrary") - instructions(what, "callByHand")
               for _ in range(RUNS))


class Cost(unittest.TestCase):
    def assert_at_most(self, what, cost, limit):
        print(f"{what}: {cost:.0f}, at most {limit}")
        self.assertLessEqual(cost, limit)

    def test_instructions_of_a_call_beyond_the_same_call_by_hand(self):
        for what, limit in MOST_INSTRUCTIONS.items():
            with self.subTest(what):
                self.assert_at_most(f"instructions of a {what}", added_instructions(what), limit)

    def test_instructions_of_an_entry_of_a_map(self):
        of_an_entry = (added_instructions("map of 104") - added_instructions("map of 4")) / 100
        self.assert_at_most("instructions of an entry", of_an_entry, MOST_INSTRUCTIONS_OF_AN_ENTRY)

    def test_allocations_of_a_call_beyond_the_same_call_by_hand(self):
        for what in (*MOST_INSTRUCTIONS, "map of 4", "map of 104"):
            with self.subTest(what):
                by_library, by_hand = map(int, run(PROGRAM, what).split())
                self.assert_at_most(f"allocations of a {what}", by_library - by_hand,
                                    MOST_ALLOCATIONS)


if __name__ == "__main__":
    unittest.main()
