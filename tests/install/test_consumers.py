# SPDX-License-Identifier: MIT
"""Programs of others are built with what is installed, wherever it has been moved to."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from project import SOURCE, VERSION, install, run

CONSUMER = SOURCE / "tests/install/consumer"
ASYNC_CONSUMER = SOURCE / "tests/install/async-consumer"
RUN = CONSUMER / "run-with-simulator"


class Consumers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.directory = pathlib.Path(directory.name)
        cls.prefix = cls.directory / "moved"
        install(cls.directory / "staged").rename(cls.prefix)

    def setUp(self):
        self.folder = self.directory / self.id().rpartition(".")[2]

    def assert_runs(self, *command):
        simulator = self.prefix / "bin/embosser-simulator"
        self.assertEqual(run(RUN, *command, SIMULATOR=str(simulator)), "Kestan\n")

    def assert_runs_by_cmake(self, consumer):
        run("cmake", "-S", consumer, "-B", self.folder, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", self.folder)
        self.assert_runs(self.folder / "consumer")

    def assert_runs_by_pkg_config(self, consumer):
        shutil.copytree(consumer, self.folder)
        libraries = self.prefix / "lib"
        run("make", "-C", self.folder, "-f", "Makefile", "consumer",
            f"LDFLAGS=-Wl,-rpath,'{libraries}'", PKG_CONFIG_PATH=f"{libraries}/pkgconfig")
        self.assert_runs(self.folder / "consumer")

    def assert_runs_by_qmake(self, consumer):
        self.folder.mkdir()
        libraries = self.prefix / "lib"
        environment = {"PKG_CONFIG_PATH": f"{libraries}/pkgconfig", "QT_SELECT": "5",
                       "LD_RUN_PATH": str(libraries)}
        run("qmake", "-o", self.folder / "Makefile", consumer / "consumer.pro", **environment)
        run("make", "-C", self.folder, **environment)
        self.assert_runs(self.folder / "consumer")

    def test_with_cmake(self):
        self.assert_runs_by_cmake(CONSUMER)

    def test_with_pkg_config(self):
        self.assert_runs_by_pkg_config(CONSUMER)

    def test_with_qmake(self):
        self.assert_runs_by_qmake(CONSUMER)

    def test_that_do_not_wait_with_cmake(self):
        self.assert_runs_by_cmake(ASYNC_CONSUMER)

    def test_that_do_not_wait_with_pkg_config(self):
        self.assert_runs_by_pkg_config(ASYNC_CONSUMER)

    def test_that_do_not_wait_with_qmake(self):
        self.assert_runs_by_qmake(ASYNC_CONSUMER)

    def test_test_themselves(self):
        run("cmake", "-S", SOURCE / "examples/consumer-tests", "-B", self.folder,
            f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", self.folder)
        run("ctest", "--test-dir", self.folder, "--output-on-failure", "--no-tests=error",
            PATH=f"{self.prefix / 'bin'}:{os.environ['PATH']}")

    def test_test_themselves_by_pkg_config(self):
        self.folder.mkdir()
        program = self.folder / "main.cpp"
        program.write_text("#include <libconfigurationmanager-testing/SimulatedEmbosser.h>\n"
                           "#include <QtCore/QCoreApplication>\n"
                           "int main(int argc, char **argv)\n"
                           "{\n"
                           "    QCoreApplication application(argc, argv);\n"
                           "    libconfigurationmanager::SimulatedEmbosser embosser;\n"
                           "    embosser.start();\n"
                           "    return embosser.calls().size();\n"
                           "}\n")
        flags = run("pkg-config", "--cflags", "--libs", "libconfigurationmanager-testing",
                    PKG_CONFIG_PATH=f"{self.prefix}/lib/pkgconfig")
        run("g++", "-fPIC", program, *flags.split(), "-o", self.folder / "consumer")
        run(self.folder / "consumer", PATH=f"{self.prefix / 'bin'}:{os.environ['PATH']}")

    def test_ask_for_a_component_that_is_not_there(self):
        self.folder.mkdir()
        (self.folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.22)\n"
            "project(consumer LANGUAGES CXX)\n"
            "find_package(libconfigurationmanager REQUIRED COMPONENTS nothing)\n")
        with self.assertRaisesRegex(
                AssertionError, "package\\s+libconfigurationmanager-nothing\\s+is\\s+not\\s+installed"):
            run("cmake", "-S", self.folder, "-B", self.folder / "build",
                f"-DCMAKE_PREFIX_PATH={self.prefix}")

    def test_of_the_support_library_alone(self):
        self.folder.mkdir()
        program = self.folder / "main.cpp"
        program.write_text("#include <libtavelorn/DBusService.h>\n"
                           "int main() { return sizeof(libtavelorn::DBusService) == 0; }\n")
        (self.folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.22)\n"
            "project(consumer LANGUAGES CXX)\n"
            "find_package(libtavelorn REQUIRED)\n"
            "add_executable(consumer main.cpp)\n"
            "target_link_libraries(consumer PRIVATE libtavelorn::libtavelorn)\n")
        run("cmake", "-S", self.folder, "-B", self.folder / "build",
            f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", self.folder / "build")

        flags = run("pkg-config", "--cflags", "--libs", "libtavelorn",
                    PKG_CONFIG_PATH=f"{self.prefix}/lib/pkgconfig")
        run("g++", "-fPIC", program, *flags.split(), "-o", self.folder / "consumer")

    def test_are_told_the_version(self):
        for package in ("libconfigurationmanager", "libconfigurationmanager-async",
                        "libconfigurationmanager-testing", "libtavelorn"):
            self.assertEqual(run("pkg-config", "--modversion", package,
                                 PKG_CONFIG_PATH=f"{self.prefix}/lib/pkgconfig"), VERSION + "\n")

    def test_of_another_major_version_are_refused(self):
        shutil.copytree(CONSUMER, self.folder)
        project = self.folder / "CMakeLists.txt"
        project.write_text(project.read_text().replace(" 1 REQUIRED", " 2 REQUIRED"))
        with self.assertRaisesRegex(AssertionError, "compatible with requested version"):
            run("cmake", "-S", self.folder, "-B", self.folder / "build",
                f"-DCMAKE_PREFIX_PATH={self.prefix}")

    def test_with_a_libtavelorn_of_their_own(self):
        run("cmake", "-S", SOURCE, "-B", self.folder, "-GNinja", "-DBUILD_TESTING=OFF",
            "-DCMAKE_BUILD_TYPE=Debug", f"-DCMAKE_PREFIX_PATH={self.prefix}",
            "-DLIBCONFIGURATIONMANAGER_INSTALLED_LIBTAVELORN=ON",
            "-DLIBCONFIGURATIONMANAGER_SIMULATOR=OFF", "-DLIBCONFIGURATIONMANAGER_TOOL=OFF",
            "-DLIBCONFIGURATIONMANAGER_TESTING=OFF", "-DLIBCONFIGURATIONMANAGER_EXAMPLES=OFF")
        run("cmake", "--build", self.folder)
        staged = self.directory / "library-only"
        run("cmake", "--install", self.folder, "--prefix", staged)
        self.assertCountEqual([library.name for library in staged.glob("lib/lib*.so")],
                              ["libconfigurationmanager.so", "libconfigurationmanager-async.so"])
        self.assertIn(f"libtavelorn.so.1 => {self.prefix}/lib/libtavelorn.so.1",
                      run("ldd", self.folder / "src/libconfigurationmanager.so"))

    def test_as_a_subproject(self):
        for fetch in ("ON", "OFF"):
            with self.subTest(FetchContent=fetch):
                run("cmake", "-S", SOURCE / "tests/install/superproject", "-B", self.folder,
                    "-GNinja", f"-DSUBPROJECT={SOURCE}", f"-DFETCH={fetch}")
        run("cmake", "--build", self.folder, "--target", "consumer")
        self.assert_runs(self.folder / "consumer")
        # The last one has excluded the subproject from all, and so from the installation.
        run("cmake", "--install", self.folder, "--prefix", self.folder / "installed")
        self.assertFalse((self.folder / "installed").exists())

    def test_without_a_service_say_so(self):
        run("cmake", "-S", CONSUMER, "-B", self.folder, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", self.folder)
        result = subprocess.run([self.folder / "consumer"], capture_output=True, text=True,
                                check=False, env={"DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/none"})
        self.assertEqual((result.returncode, result.stderr),
                         (1, "There is no configuration service.\n"))

    def test_have_the_tool(self):
        self.assert_runs(self.prefix / "bin/embosserctl", "get", "Model")


if __name__ == "__main__":
    unittest.main(verbosity=2)
