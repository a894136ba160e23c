# SPDX-License-Identifier: MIT
"""The installed programs and libraries are hardened and need nothing that they do not use."""

import json
import os
import pathlib
import re
import tempfile
import unittest

from project import BUILD, install, run

COMPILER_ID = os.environ["COMPILER_ID"]
COMPILER = {"libc.so.6", "libgcc_s.so.1", "libm.so.6", "libstdc++.so.6", "ld-linux-armhf.so.3",
            "ld-linux-x86-64.so.2"}
NEEDED = {
    "lib/libconfigurationmanager.so": {"libQt5Core.so.5", "libQt5DBus.so.5", "libtavelorn.so.1"},
    "lib/libconfigurationmanager-async.so": {"libQt5Core.so.5", "libQt5DBus.so.5",
                                             "libconfigurationmanager.so.1", "libtavelorn.so.1"},
    "lib/libtavelorn.so": {"libQt5Core.so.5", "libQt5DBus.so.5"},
    "bin/embosserctl": {"libQt5Core.so.5", "libQt5DBus.so.5",
                        "libconfigurationmanager-async.so.1", "libconfigurationmanager.so.1"},
    "bin/embosser-simulator": {"libQt5Core.so.5", "libQt5DBus.so.5", "libQt5Sql.so.5",
                               "libjsoncpp.so.25"},
}


def of_each_file(check):
    def test(self):
        for name in NEEDED:
            with self.subTest(name):
                check(self, self.prefix / name)
    return test


class BuiltFiles(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.prefix = install(pathlib.Path(directory.name))

    def test_are_all_looked_at(self):
        files = (*self.prefix.glob("bin/*"), *self.prefix.glob("lib/*.so"))
        self.assertCountEqual([str(file.relative_to(self.prefix)) for file in files], NEEDED)

    @of_each_file
    def test_need_what_they_use(self, file):
        needed = set(re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "--dynamic", file)))
        self.assertEqual(needed - COMPILER, NEEDED[str(file.relative_to(self.prefix))])

    def test_are_linked_with_all_that_they_use_and_nothing_else(self):
        # Nothing shows it in files that do.
        commands = run("ninja", "-C", BUILD, "-t", "commands", "all")
        for library in ("libconfigurationmanager", "libconfigurationmanager-async", "libtavelorn"):
            command = re.search(rf"^.* -Wl,-soname,{library}\.so.*$", commands, re.MULTILINE)
            self.assertRegex(command.group(), r"--no-undefined\b")
            self.assertRegex(command.group(), r"--as-needed\b")

    @of_each_file
    def test_are_bound_before_they_run_and_read_only_then(self, file):
        self.assertIn("GNU_RELRO", run("readelf", "--segments", file))
        self.assertRegex(run("readelf", "--dynamic", file), r"\(FLAGS_1\).*\bNOW\b")

    @of_each_file
    def test_have_no_executable_stack_and_no_writable_code(self, file):
        segments = run("readelf", "--segments", "--wide", file)
        self.assertRegex(segments, r"GNU_STACK .* RW +0x")
        self.assertNotIn("RWE", segments)
        self.assertNotIn("TEXTREL", run("readelf", "--dynamic", file))

    @of_each_file
    def test_can_be_loaded_anywhere(self, file):
        self.assertIn("DYN (", run("readelf", "--file-header", file))

    @of_each_file
    def test_watch_their_stack(self, file):
        self.assertRegex(run("nm", "--dynamic", "--undefined-only", file),
                         "__stack_chk_fail")

    def test_watch_their_buffers(self):
        commands = json.loads((BUILD / "compile_commands.json").read_text())
        for command in commands:
            self.assertRegex(command["command"], "_FORTIFY_SOURCE=[23]", command["file"])

    @unittest.skipIf(COMPILER_ID == "Clang", "Clang calls them for memcpy() and the like only")
    def test_call_functions_that_watch_buffers(self):
        self.assertIn("_chk@", run("nm", "--dynamic", self.prefix / "bin/embosser-simulator"))

    def test_have_versioned_names(self):
        for library in ("libconfigurationmanager", "libconfigurationmanager-async", "libtavelorn"):
            file = self.prefix / f"lib/{library}.so"
            version = re.search(r"SONAME.*\[(.*)\]", run("readelf", "--dynamic", file)).group(1)
            self.assertEqual(version, f"{library}.so.1")
            self.assertTrue((self.prefix / "lib" / version).is_symlink())
            self.assertRegex(file.resolve().name, rf"{library}\.so\.1\.\d+\.\d+$")


if __name__ == "__main__":
    unittest.main(verbosity=2)
