# SPDX-License-Identifier: MIT
"""The recipe, which cannot be built here, agrees with what it is for."""

import hashlib
import pathlib
import re
import tempfile
import unittest

from project import CACHE, SOURCE, install

RECIPE = next((SOURCE / "packaging/yocto").glob("*.bb"))
TEXT = RECIPE.read_text()
# The folders that BitBake's own packages take: libraries, headers and manual pages.
TAKEN = ("bin", "include", "lib", "share/man")
FOLDERS = {"bindir": "bin", "datadir": "share", "nonarch_libdir": "lib"}


class Recipe(unittest.TestCase):
    def test_has_the_sum_of_the_licence(self):
        digest = hashlib.md5((SOURCE / "LICENSE").read_bytes()).hexdigest()
        self.assertIn(f"file://LICENSE;md5={digest}", TEXT)

    def test_uses_options_that_there_are(self):
        for option in set(re.findall(r"-D(\w+)=", TEXT)):
            self.assertRegex(CACHE, rf"(?m)^{option}:BOOL=", option)

    def test_packs_what_is_installed(self):
        packed = {f"{FOLDERS[folder]}/{rest}"
                  for folder, rest in re.findall(r"\$\{(\w+)\}/([\w./-]+)", TEXT)
                  if folder in FOLDERS}
        with tempfile.TemporaryDirectory() as directory:
            prefix = install(pathlib.Path(directory))
            for path in packed:
                self.assertTrue((prefix / path).exists(), path)
            for file in prefix.glob("**/*"):
                name = str(file.relative_to(prefix))
                if file.is_file() and not name.startswith(TAKEN):
                    self.assertTrue(any(name.startswith(path) for path in packed), name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
