# SPDX-License-Identifier: MIT
"""The tool's folders include only those that its README allows, so that there is no cycle."""

import pathlib
import re
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tool"
FOLDERS = sorted(path.name for path in TOOL.iterdir() if path.is_dir())


def allowed():
    """What each folder may include, from the table in the README."""
    result = {}
    for folder, rest in re.findall(r"^\| `(\w+)/` \|[^|]*\|([^|]*)\|$",
                                   (TOOL / "README.md").read_text(), re.M):
        names = set(re.findall(r"`(\w+)`", rest))
        if "all above" in rest:
            names = set(result) - names
        result[folder] = names
    return result


def included(folder):
    """The folders that a folder includes, each with an example."""
    result = {}
    for path in sorted((TOOL / folder).glob("*.*")):
        for name in re.findall(r'^#include "(?:\.\./)*(\w+)/', path.read_text(), re.M):
            if name != folder and name in FOLDERS:
                result[name] = path.name
    return result


class Folders(unittest.TestCase):
    def test_table_names_every_folder_after_those_that_it_may_include(self):
        known = []
        for folder, names in allowed().items():
            self.assertLessEqual(names, set(known))
            known.append(folder)
        self.assertEqual(sorted(known), FOLDERS)

    def test_includes_are_allowed(self):
        seen = 0
        for folder, names in allowed().items():
            for other, example in included(folder).items():
                self.assertIn(other, names, f"{folder}/{example}")
                seen += 1
        self.assertGreater(seen, len(FOLDERS))

    def test_includes_name_the_folder(self):
        for path in TOOL.glob("*/*.*"):
            if path.suffix in (".h", ".cpp"):
                for name in re.findall(r'^#include "([^"]+)"', path.read_text(), re.M):
                    self.assertRegex(name, r"^\w+/\w+\.h$", path)


if __name__ == "__main__":
    unittest.main()
