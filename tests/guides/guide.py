#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Takes a guide apart: the Markdown is the only source of the code in it.

    ```cpp       goes into the guide's program: one with a main() is the program, all others follow
                 one another in a main() that has a SimulatedEmbosser, `embosser`
    ```text      after it, is what the program prints
    ```console   a command behind "$ ", and what it prints; "..." alone stands for any
                 lines, in a line for any text

A comment in the line before a block says what is special about it: `<!-- declarations -->` stands
before the main(), `<!-- not run: REASON -->` is left out. `<!-- test: CODE -->` is in the program, but
not shown. A block of another language, or one that is only indented, must be marked as not run.
"""

import pathlib
import re
import sys
from typing import List, NamedTuple

MAIN = """\
int main(int argc, char *argv[])
{{
    QCoreApplication application(argc, argv);
    libconfigurationmanager::SimulatedEmbosser embosser;
    embosser.start(QStringLiteral("Dovrik"));
{body}
return 0;
}}
"""

BLOCK = re.compile(r"(?:^<!-- (?P<mark>[^\n]*) -->\n)?^```(?P<language>\w*)\n(?P<text>.*?)^```$"
                   r"|^<!-- test: (?P<test>[^\n]*) -->$|(?P<indented>^    \S[^\n]*$)",
                   re.DOTALL | re.MULTILINE)


class GuideError(Exception):
    """A block of which nobody knows how it is run."""


class Block(NamedTuple):
    language: str
    text: str


def blocks(markdown):
    """The blocks that are run, in their order."""
    for match in BLOCK.finditer(markdown):
        mark = match["mark"] or ""
        if match["test"] is not None:
            yield Block("cpp", match["test"] + "\n")
        elif match["indented"] is not None:
            if not is_in_list(markdown, match.start()):
                raise GuideError(f"a block that is only indented: {match['indented'].strip()}")
        elif mark.startswith("not run: "):
            continue
        elif mark.startswith("test: "):
            yield Block("cpp", mark[len("test: "):] + "\n")
            yield Block(known(match["language"], match["text"]), match["text"])
        elif mark == "declarations" and match["language"] == "cpp":
            yield Block("declarations", match["text"])
        elif mark:
            raise GuideError(f"an unknown mark: {mark}")
        else:
            yield Block(known(match["language"], match["text"]), match["text"])


def known(language, text):
    if language not in ("cpp", "text", "console"):
        raise GuideError(f"a block that is neither run nor marked as not run:\n{text}")
    return language


def is_in_list(markdown, position):
    """Whether the paragraph before is an item of a list, which the indented line goes on with."""
    lines = markdown[:position].rstrip("\n").splitlines()
    return bool(lines) and re.match(r"\s*([-*]|\d+\.) |\s+\S", lines[-1]) is not None


def program(markdown):
    """The program of the guide's C++ blocks; nothing if there are none."""
    parts = list(blocks(markdown))
    code = [block for block in parts if block.language in ("cpp", "declarations")]
    if not code:
        return ""
    if any(re.search(r"^int main\(|^QTEST_\w*MAIN", block.text, re.MULTILINE) for block in code):
        return "".join(block.text for block in code)
    includes: List[str] = ["#include <libconfigurationmanager-testing/SimulatedEmbosser.h>\n",
                           "#include <QtCore/QCoreApplication>\n"]
    texts = {"cpp": "", "declarations": ""}
    for block in code:
        for line in block.text.splitlines(keepends=True):
            if line.startswith("#include"):
                includes.append(line)
            else:
                texts[block.language] += line
    return "".join(dict.fromkeys(includes)) + "\n" + texts["declarations"] + MAIN.format(
        body=texts["cpp"])


if __name__ == "__main__":
    guide, source = map(pathlib.Path, sys.argv[1:])
    source.write_text(program(guide.read_text(encoding="utf-8")), encoding="utf-8")
