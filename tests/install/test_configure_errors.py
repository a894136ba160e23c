# SPDX-License-Identifier: MIT
"""What the project cannot be built with is refused with what to install or to change."""

import pathlib
import subprocess
import tempfile
import unittest

from project import SOURCE


class ConfigureErrors(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)

    def write(self, name, text):
        file = self.directory / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file

    def write_package(self, name, version, text=""):
        self.write(f"lib/cmake/{name}/{name}Config.cmake", text)
        self.write(f"lib/cmake/{name}/{name}ConfigVersion.cmake", f"""
            set(PACKAGE_VERSION {version})
            if(NOT PACKAGE_FIND_VERSION VERSION_GREATER PACKAGE_VERSION)
                set(PACKAGE_VERSION_COMPATIBLE TRUE)
            endif()""")

    def configure(self, *arguments):
        return subprocess.run(["cmake", "-S", SOURCE, "-B", self.directory / "build", "-GNinja",
                               f"-DCMAKE_PREFIX_PATH={self.directory}", *arguments],
                              capture_output=True, text=True, check=False)

    def configure_with_own_packages_only(self):
        return self.configure(f"-DCMAKE_FIND_ROOT_PATH={self.directory}",
                              "-DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY")

    def assert_error(self, result, *texts):
        self.assertNotEqual(result.returncode, 0)
        error = " ".join(result.stderr.split())
        for text in texts:
            self.assertIn(text, error)

    def test_an_unknown_option(self):
        misspelt = "LIBCONFIGURATIONMANAGER_SIMULATR"
        self.assert_error(self.configure(f"-D{misspelt}:BOOL=OFF"),
                          f"There is no option {misspelt}; the options are",
                          "LIBCONFIGURATIONMANAGER_SIMULATOR LIBCONFIGURATIONMANAGER_SIMULATOR_")
        self.assertEqual(self.configure().returncode, 0)

    def test_benchmarks_without_tests(self):
        self.assert_error(self.configure("-DLIBCONFIGURATIONMANAGER_BENCHMARKS=ON",
                                         "-DBUILD_TESTING=OFF"),
                          "The benchmarks use the tests' bus: set -DBUILD_TESTING=ON")

    def test_the_tool_without_the_library_that_it_uses(self):
        self.assert_error(self.configure("-DLIBCONFIGURATIONMANAGER_ASYNC=OFF"),
                          "The tool uses the library of calls that do not wait: set "
                          "-DLIBCONFIGURATIONMANAGER_ASYNC=ON")

    def test_a_compiler_that_is_too_old(self):
        compiler = self.write("g++", '#!/bin/sh\nexec g++ -U__GNUC__ -D__GNUC__=7 "$@"\n')
        compiler.chmod(0o755)
        self.assert_error(self.configure(f"-DCMAKE_CXX_COMPILER={compiler}"),
                          "The compiler GNU 7.", "is not supported: install GCC 8 or Clang 10")

    def test_another_compiler(self):
        self.assert_error(self.configure("-DCMAKE_CXX_COMPILER_ID=MSVC",
                                         "-DCMAKE_CXX_COMPILER_ID_RUN=1"),
                          "The compiler MSVC", "is not supported")

    def test_no_qt(self):
        self.assert_error(self.configure_with_own_packages_only(),
                          "Qt 5.15 is needed, and no Qt 5 is found: install", "qtbase5-dev")

    def test_a_qt_that_is_too_old(self):
        self.write_package("Qt5", "5.12.8")
        self.assert_error(self.configure_with_own_packages_only(),
                          "Qt 5.15 is needed, but what is there is Qt 5.12.8: install",
                          "qtbase5-dev")

    def test_a_qt_without_d_bus(self):
        self.write_package("Qt5", "5.15.8", """
            find_package(Qt5Core REQUIRED PATHS ${CMAKE_CURRENT_LIST_DIR}/../Qt5Core)
            set(Qt5_FOUND FALSE)""")
        self.write_package("Qt5Core", "5.15.8")
        self.assert_error(self.configure_with_own_packages_only(),
                          "Qt 5.15.8 is there, but its D-Bus module is missing: install",
                          "qtbase5-dev")

    def test_no_libtavelorn(self):
        self.assert_error(self.configure("-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=ON"),
                          "No libtavelorn is found: install it",
                          "-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=OFF")


if __name__ == "__main__":
    unittest.main(verbosity=2)
