# SPDX-License-Identifier: MIT
"""How a guide is taken apart: a block that nobody runs must be marked."""

import pathlib
import unittest

import guide

PROJECT = pathlib.Path(__file__).resolve().parents[2]
GUIDES = PROJECT / "docs/guides"


class Blocks(unittest.TestCase):
    def test_of_another_language_must_be_marked(self):
        for block in ("```sh\nls\n```\n", "```\nls\n```\n", "Text\n\n    ls\n"):
            with self.subTest(block), self.assertRaises(guide.GuideError):
                list(guide.blocks(block))
        self.assertEqual(list(guide.blocks("<!-- not run: it is long -->\n```sh\nls\n```\n")), [])

    def test_with_an_unknown_mark_are_refused(self):
        with self.assertRaises(guide.GuideError):
            list(guide.blocks("<!-- not run -->\n```cpp\nint a;\n```\n"))

    def test_follow_one_another_in_a_program(self):
        program = guide.program("<!-- declarations -->\n```cpp\n#include <A>\nstruct S;\n```\n"
                                "<!-- test: hidden(); -->\n\n```cpp\nfirst();\n```\n\n- one\n    more\n"
                                "```cpp\nsecond();\n```\n```text\nprinted\n```\n")
        places = [program.index(text) for text in ("#include <A>", "struct S;", "int main(",
                                                   "hidden();", "first();", "second();")]
        self.assertEqual(places, sorted(places))
        self.assertNotIn("printed", program)

    def test_with_a_main_are_the_program(self):
        self.assertEqual(guide.program("```cpp\nint main() {}\n```\n"), "int main() {}\n")

    def test_of_all_guides_are_known(self):
        guides = sorted(GUIDES.glob("*.md"))
        self.assertGreater(len(guides), 10)
        for path in [*guides, PROJECT / "README.md"]:
            with self.subTest(path.name):
                list(guide.blocks(path.read_text(encoding="utf-8")))

    def test_index_names_every_guide(self):
        index = (GUIDES / "README.md").read_text(encoding="utf-8")
        for path in GUIDES.glob("*.md"):
            if path.name != "README.md":
                self.assertIn(f"({path.name})", index)


if __name__ == "__main__":
    unittest.main()
