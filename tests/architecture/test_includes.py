# SPDX-License-Identifier: MIT
"""Which room may include which: the table of docs/ARCHITECTURE.md, over the include graph."""

import pathlib
import re
import subprocess
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]

VOCABULARY = {"include/libconfigurationmanager/lcm.h", "include/libconfigurationmanager/export.h"}

# What a file in the room may include beside its own room: folders, or single files.
ROOMS = {
    "include": set(),
    "libtavelorn": set(),
    "src": {"include", "libtavelorn/include"},
    "contract": set(),
    "support": set(),
    "simulator": {"contract", "support"} | VOCABULARY,
    "tool": {"contract", "support", "include", "async/include"},
    "examples": {"include", "async/include", "libtavelorn/include"},
}

# Where the compiler looks for a header of the project, beside the folder of the including file.
SEARCHED = ("", "include", "libtavelorn/include", "async/include", "src", "simulator", "tool")

INCLUDE = re.compile(r'^\s*#\s*include\s+["<]([^">]+)[">]', re.MULTILINE)


def included(file):
    """The files of the project that a file includes."""
    for name in INCLUDE.findall((PROJECT / file).read_text(encoding="utf-8")):
        for folder in (file.parent, *map(pathlib.Path, SEARCHED)):
            found = (PROJECT / folder / name).resolve()
            if found.is_file() and PROJECT in found.parents:
                yield found.relative_to(PROJECT)
                break


def is_allowed(room, header):
    return any(header.as_posix() == place or header.as_posix().startswith(place + "/")
               for place in ROOMS[room] | {room})


def cycle(edges):
    """A folder that is reached from itself; None when there is none."""
    def reached(start):
        seen, todo = set(), [start]
        while todo:
            for target in edges.get(todo.pop(), set()) - seen:
                seen.add(target)
                todo.append(target)
        return seen
    return next((folder for folder in edges if folder in reached(folder)), None)


class Includes(unittest.TestCase):
    files = [pathlib.Path(f) for f in subprocess.run(
        ["git", "ls-files", "*.cpp", "*.h"], cwd=PROJECT, capture_output=True, text=True,
        check=True).stdout.splitlines()]

    def test_keep_to_the_rooms(self):
        checked = 0
        for file in self.files:
            room = file.parts[0]
            for header in included(file) if room in ROOMS else ():
                checked += 1
                self.assertTrue(is_allowed(room, header), f"{file} includes {header}")
        self.assertGreater(checked, 100)

    def test_have_no_cycle_between_the_folders_of_a_program(self):
        for program in ("simulator", "tool"):
            edges = {}
            for file in self.files:
                if file.parts[0] == program:
                    for header in included(file):
                        if header.parts[0] == program and header.parent != file.parent:
                            edges.setdefault(file.parent, set()).add(header.parent)
            with self.subTest(program):
                self.assertTrue(edges)
                self.assertIsNone(cycle(edges))


if __name__ == "__main__":
    unittest.main()
