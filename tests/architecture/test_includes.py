# SPDX-License-Identifier: MIT
"""What may include what: the tables of the documents, held against the include graph."""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]

# Where the compiler looks for a header of the project, beside the folder of the including file.
SEARCHED = ("", "include", "libtavelorn/include", "async/include", "testing/include", "src", "simulator", "tool")
INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)
ROW = re.compile(r"^\| `([\w/]+)/` \|(.*)\|$", re.MULTILINE)


def rows(document):
    """The rows of a table of folders: the folder, and the last cell."""
    text = (PROJECT / document).read_text(encoding="utf-8")
    return [(folder, rest.split("|")[-1]) for folder, rest in ROW.findall(text)]


def rooms():
    """What each room may include: folders, single headers by their path, and public ones by name."""
    return {room: {name.rstrip("/") if "/" in name else f"include/libconfigurationmanager/{name}"
                   for name in re.findall(r"`([\w./]+)`", may)} | {room}
            for room, may in rows("docs/ARCHITECTURE.md") if room not in ("tests", "benchmarks")}


def sources():
    return [path.relative_to(PROJECT) for room in rooms()
            for path in sorted((PROJECT / room).rglob("*")) if path.suffix in (".cpp", ".h")]


def included(file):
    """The files of the project that a file includes."""
    for name in INCLUDE.findall((PROJECT / file).read_text(encoding="utf-8")):
        for folder in (file.parent, *map(pathlib.Path, SEARCHED)):
            found = (PROJECT / folder / name).resolve()
            if found.is_file() and PROJECT in found.parents:
                yield found.relative_to(PROJECT)
                break


class Includes(unittest.TestCase):
    files = sources()

    def test_keep_to_the_rooms(self):
        checked = 0
        for room, may in rooms().items():
            for file in self.files:
                for header in included(file) if file.parts[0] == room else ():
                    checked += 1
                    self.assertTrue(any(header.as_posix() == place or pathlib.Path(place) in header.parents
                                        for place in may), f"{file} includes {header}")
        self.assertGreater(checked, 100)

    def test_of_a_program_go_only_to_folders_that_stand_above(self):
        for program in ("simulator", "tool"):
            order = [folder for folder, _ in rows(f"{program}/README.md")]
            checked = 0
            for file in self.files:
                if file.parts[0] != program or len(file.parts) < 3:
                    continue
                for header in included(file):
                    if header.parts[0] == program:
                        checked += 1
                        self.assertIn(header.parts[1], order, f"{file} includes {header}")
                        self.assertLessEqual(order.index(header.parts[1]),
                                             order.index(file.parts[1]), f"{file} includes {header}")
            self.assertGreater(checked, len(order))


if __name__ == "__main__":
    unittest.main()
