# SPDX-License-Identifier: MIT
"""What names the version, because it must, names that of CMakeLists.txt."""

import re
import unittest

from project import SOURCE, VERSION


class Version(unittest.TestCase):
    def first_match(self, pattern, file):
        return re.search(pattern, (SOURCE / file).read_text(), re.MULTILINE).group(1)

    def test_of_the_debian_packages(self):
        upstream = self.first_match(r"\A\S+ \(([^)-]*)[^)]*\)", "debian/changelog")
        self.assertEqual(upstream, VERSION)

    def test_of_the_changelog(self):
        newest = self.first_match(r"^## \[([^]]+)\]", "CHANGELOG.md")
        self.assertIn(newest, ("Unreleased", VERSION))

    def test_of_the_recipe(self):
        recipes = [recipe.name for recipe in SOURCE.glob("packaging/yocto/*.bb")]
        self.assertEqual(recipes, [f"libconfigurationmanager_{VERSION}.bb"])

    def test_that_consumers_ask_for(self):
        asked = self.first_match(r"find_package\(libconfigurationmanager ([\d.]+) REQUIRED\)",
                                 "tests/install/consumer/CMakeLists.txt")
        self.assertEqual(asked, ".".join(VERSION.split(".")[:1]))


if __name__ == "__main__":
    unittest.main(verbosity=2)
