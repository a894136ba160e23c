# SPDX-License-Identifier: MIT
"""What the documents name is there: the targets of their links, scripts, tests and folders. What
they have one type is run by a test, or is said not to be."""

import pathlib
import re
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENTS = sorted(path for pattern in ("*.md", "*/*.md", "*/*/*.md")
                   for path in PROJECT.glob(pattern) if "build" not in path.parts)

LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")
SCRIPT = re.compile(r"\bscripts/[a-z][a-z0-9-]*(?:\.\w+)?")
FOLDER = re.compile(r"^\| `([\w./]+/)`", re.MULTILINE)
TEST = re.compile(r"`((?:tst|test)_\w+)`")


CODE = re.compile(r"^```.*?^```$|^<!--.*?-->$", re.MULTILINE | re.DOTALL)


# What stands before a block. README's and the guides' are run as guides are: tests/guides.
MARK = re.compile(r"<!-- (?:run by (?P<test>\w+)|not run: .+|no commands) -->")
GUIDES = {PROJECT / "README.md", *PROJECT.glob("docs/guides/*.md")}


def blocks_in(document):
    """The lines before the blocks of a document, each with the first line of its block."""
    before, is_fenced = "", False
    lines = document.read_text(encoding="utf-8").splitlines()
    for above, line in zip([""] + lines, lines):
        is_fence = line.startswith("```")
        is_first = is_fence and not is_fenced or line.startswith("    ") and not above
        # An indented line may go on with an item of a list, or with a block.
        if is_first and not re.match(r"\s|[-*] |\d+\. ", before):
            yield before, line
        is_fenced ^= is_fence
        before = line or before


def found_in(pattern, document):
    return set(pattern.findall(document.read_text(encoding="utf-8")))


def links_in(document):
    return set(LINK.findall(CODE.sub("", document.read_text(encoding="utf-8"))))


class Documents(unittest.TestCase):
    def test_link_to_what_is_there(self):
        seen = 0
        for document in DOCUMENTS:
            for target in links_in(document):
                if "://" not in target:
                    seen += 1
                    self.assertTrue((document.parent / target).exists(),
                                    f"{document.relative_to(PROJECT)}: {target}")
        self.assertGreater(seen, 10)

    def test_name_scripts_that_are_there(self):
        for document in DOCUMENTS:
            for script in found_in(SCRIPT, document):
                self.assertTrue((PROJECT / script).exists(),
                                f"{document.relative_to(PROJECT)}: {script}")

    def test_name_tests_that_are_there(self):
        there = {path.stem for path in (PROJECT / "tests").rglob("t*st_*.*")}
        for document in DOCUMENTS:
            missing = found_in(TEST, document) - there
            self.assertEqual(missing, set(), document.relative_to(PROJECT))

    def test_say_who_runs_their_commands(self):
        there = {path.stem for path in (PROJECT / "tests").rglob("t*st_*.*")}
        seen = 0
        for document in set(DOCUMENTS) - GUIDES:
            for before, line in blocks_in(document):
                seen += 1
                mark = MARK.fullmatch(before)
                self.assertTrue(mark, f"{document.relative_to(PROJECT)}: no mark before:\n{line}")
                if mark["test"]:
                    self.assertIn(mark["test"], there)
        self.assertGreater(seen, 10)

    def test_list_every_folder(self):
        folders = {f"{path.name}/" for path in PROJECT.iterdir()
                   if path.is_dir() and path.name not in ("build", ".git", "obj-x86_64-linux-gnu",
                                                          "obj-arm-linux-gnueabihf")}
        listed = found_in(re.compile(r"^\| (`.*?`) \|", re.MULTILINE), PROJECT / "README.md")
        listed = {folder for cell in listed for folder in re.findall(r"`([\w.-]+/)`", cell)}
        self.assertEqual({f for f in folders if not f.startswith(".")} - listed, set())


if __name__ == "__main__":
    unittest.main()
