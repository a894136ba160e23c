# SPDX-License-Identifier: MIT
"""What the simulator's files may include: see the rules in its README."""

import pathlib
import re
import sys
import unittest

SIMULATOR = pathlib.Path(sys.argv.pop(1))

# A folder includes from itself and from those that stand before it.
FOLDERS = ["model", "state", "methods", "bus", "program"]
VOCABULARY = {"libconfigurationmanager/lcm.h", "libconfigurationmanager/export.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]', re.MULTILINE)


def sources(folder):
    return sorted(path for path in folder.rglob("*") if path.suffix in {".cpp", ".h"})


def includes(path):
    """The (quote, name) of each include of a file."""
    return INCLUDE.findall(path.read_text(encoding="utf-8"))


def objection(name):
    """Why no file may include this name, if so."""
    if name.startswith("libconfigurationmanager/") and name not in VOCABULARY:
        return "the client library's headers are not the simulator's business"
    if name.startswith(("libtavelorn/", "src/", "tool/", "tests/", "../")):
        return "another room"
    return None


class IncludeGraph(unittest.TestCase):
    def test_every_folder_is_known(self):
        self.assertEqual(sorted({p.parent.name for p in sources(SIMULATOR)} - {SIMULATOR.name}),
                         sorted(FOLDERS))

    def test_a_folder_includes_only_from_those_before_it(self):
        seen = 0
        for path in sources(SIMULATOR):
            for quote, name in includes(path):
                if quote != '"':
                    continue
                seen += 1
                target = name.split("/")[0]
                with self.subTest(path=str(path), include=name):
                    self.assertTrue((SIMULATOR / name).is_file(), "not a path from the folder")
                    self.assertIn(target, FOLDERS)
                    if path.parent != SIMULATOR:
                        self.assertLessEqual(FOLDERS.index(target),
                                             FOLDERS.index(path.parent.name))
        self.assertGreater(seen, len(FOLDERS))

    def test_of_other_rooms_only_the_vocabulary_is_included(self):
        seen = set()
        for path in sources(SIMULATOR):
            for quote, name in includes(path):
                with self.subTest(path=str(path), include=name):
                    self.assertIsNone(objection(name))
                if quote == "<":
                    seen.add(name)
        self.assertIn("libconfigurationmanager/lcm.h", seen)


if __name__ == "__main__":
    unittest.main()
