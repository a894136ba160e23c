# SPDX-License-Identifier: MIT
"""The exported symbols are those that debian/*.symbols writes down, since the version it says."""

import pathlib
import re
import subprocess
import sys
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
VERSION, *LIBRARIES = sys.argv[1:]

# The classes that are meant for others, with the operators of a wire type; what they take stands in
# parentheses.
INTENDED = re.compile(r"""((vtable|typeinfo|typeinfo\ name)\ for\ )?
    (libconfigurationmanager::(detail::ConfigurationManager|AsyncConfigurationManager|PendingCall
    |PendingCallWatcher)|lcm::EnumDetail|libtavelorn::DBusService)
    (::[^(]*(\(.*\)(\ const)?)?)?
    |lcm::operator(<<|>>)\(.*\)""", re.VERBOSE)

# What a class with QObject's virtual functions and no others has in its table.
QOBJECT_VTABLE = 14


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def exported(library):
    """Returns the names and sizes of what a library defines for others."""
    symbols = run("nm", "--dynamic", "--defined-only", "--format=posix", library).splitlines()
    return {fields[0]: int(fields[3], 16) for fields in map(str.split, symbols)}


def written_down(library):
    """Returns the soname and the symbols of a library, each with the version that brought it."""
    name = pathlib.Path(library).name.partition(".")[0]
    text = next(PROJECT.glob(f"debian/{name}[0-9]*.symbols")).read_text()
    soname = re.search(r"^(lib\S+) ", text, re.MULTILINE).group(1)
    return soname, dict(re.findall(r"^ (\S+)@Base (\S+)$", text, re.MULTILINE))


def demangled(symbol):
    return run("c++filt", symbol).strip()


def version(text):
    return [int(part) for part in text.split(".")]


def faults(exported_symbols, symbols, project_version):
    """Says of each symbol what is wrong with it."""
    for symbol in sorted(symbols.keys() - exported_symbols):
        yield (f"{demangled(symbol)} is gone or has changed: programs that use it would not start. "
               "Bring it back, or raise the major version and with it the soname.")
    for symbol in sorted(exported_symbols - symbols.keys()):
        major, minor, *_ = project_version.split(".")
        yield (f"{demangled(symbol)} is new: raise the minor version in CMakeLists.txt, unless that "
               f"is unreleased, and write down\n {symbol}@Base {major}.{int(minor) + 1}.0")
    for symbol, since in sorted(symbols.items()):
        if version(since) > version(project_version) or version(since)[2] != 0:
            yield (f"{demangled(symbol)} is of {since}, but the project is {project_version}: "
                   "a new symbol takes a new minor version.")


class Symbols(unittest.TestCase):
    def test_are_those_that_are_written_down(self):
        for library in LIBRARIES:
            with self.subTest(library):
                _, symbols = written_down(library)
                found = list(faults(exported(library).keys(), symbols, VERSION))
                if found:
                    self.fail("\n".join(found))

    def test_are_of_the_intended_classes(self):
        for library in LIBRARIES:
            for symbol in written_down(library)[1]:
                self.assertTrue(INTENDED.fullmatch(demangled(symbol)), demangled(symbol))

    def test_are_written_down_for_the_soname(self):
        for library in LIBRARIES:
            with self.subTest(library):
                soname = re.search(r"SONAME.*\[(.*)\]", run("readelf", "--dynamic", library))
                self.assertEqual(written_down(library)[0], soname.group(1))

    def test_have_tables_of_the_virtual_functions_of_a_qobject(self):
        for library in LIBRARIES:
            pointer = 8 if "ELF64" in run("readelf", "--file-header", library) else 4
            for symbol, size in exported(library).items():
                if symbol.startswith("_ZTV"):
                    self.assertEqual(size // pointer, QOBJECT_VTABLE, demangled(symbol))


class Faults(unittest.TestCase):
    def test_name_a_symbol_that_is_gone(self):
        (fault,) = faults(set(), {"_ZN1A1fEv": "1.0.0"}, "1.0.0")
        self.assertRegex(fault, r"^A::f\(\) is gone or has changed: .* raise the major version")

    def test_name_both_sides_of_a_changed_signature(self):
        gone, new = faults({"_ZN1A1fEi"}, {"_ZN1A1fEv": "1.0.0"}, "1.0.0")
        self.assertIn("A::f() is gone or has changed", gone)
        self.assertIn("A::f(int) is new", new)

    def test_ask_for_a_minor_version_for_a_new_symbol(self):
        (fault,) = faults({"_ZN1A1fEv"}, {}, "1.2.3")
        self.assertRegex(fault, r"^A::f\(\) is new: raise the minor version")
        self.assertTrue(fault.endswith("\n _ZN1A1fEv@Base 1.3.0"), fault)

    def test_find_a_symbol_without_its_minor_version(self):
        for since, project in (("1.3.0", "1.2.0"), ("1.2.1", "1.2.1")):
            with self.subTest(since):
                (fault,) = faults({"_ZN1A1fEv"}, {"_ZN1A1fEv": since}, project)
                self.assertRegex(fault, rf"^A::f\(\) is of {since}, but the project is {project}")

    def test_are_none_for_what_is_written_down(self):
        self.assertEqual(list(faults({"_ZN1A1fEv"}, {"_ZN1A1fEv": "1.1.0"}, "1.2.3")), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
