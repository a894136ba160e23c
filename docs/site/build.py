#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Builds the site, with Doxygen and what it does not do itself.

The Markdown documents become pages whose links lead to one another, or, to a file that is no page,
are plain text. Operations and enumerations that are set as code in them are links to the reference.
The search page gets what it looks in.
"""

import argparse
import collections
import html
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).resolve().parents[2]
INTERFACE = "com.tavelornbraille.ConfigurationManager"
CLASS = "libconfigurationmanager::detail::ConfigurationManager"
THEME = "/usr/share/doxygen-awesome-css"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("output", type=pathlib.Path, help="the folder in which html/ is made")
    parser.add_argument("--theme", default=THEME, help="the folder of doxygen-awesome.css")
    arguments = parser.parse_args()
    output = arguments.output.resolve()
    output.mkdir(parents=True, exist_ok=True)
    for folder in ("html", "pages"):
        shutil.rmtree(output / folder, ignore_errors=True)
    write_pages(output / "pages")
    doxygen = subprocess.run(
        ["doxygen", "docs/site/Doxyfile"], cwd=PROJECT, check=False,
        env={**os.environ, "OUTPUT_DIRECTORY": str(output), "THEME": arguments.theme})
    if doxygen.returncode != 0:
        return 1
    reference = Reference(output / "reference.tag")
    for page in sorted((output / "html").glob("*.html")):
        text = page.read_text(encoding="utf-8")
        if ": pages Directory Reference</title>" in text:
            # Its name depends on the output's folder, and nobody links to it.
            page.unlink()
            continue
        page.write_text(reference.linked(text, page.name), encoding="utf-8")
    index = "const searchIndex = " + json.dumps(list(entries(reference)), ensure_ascii=False,
                                                indent=0) + ";\n"
    (output / "html/search-index.js").write_text(index, encoding="utf-8")
    return 0


def documents():
    """The pages by their documents; the name of a page is that of its document or folder."""
    paths = [*PROJECT.glob("*.md"), *(PROJECT / "docs").rglob("*.md"), PROJECT / "tool/README.md",
             PROJECT / "simulator/README.md", PROJECT / "packaging/README.md"]
    pages = {path: (path.parent if path.stem == "README" else path).stem.lower() for path in paths}
    pages[PROJECT / "README.md"] = "index"
    return pages


def write_pages(folder):
    folder.mkdir()
    pages = documents()
    for path, page in pages.items():
        text = re.sub(r"\A(?:<!-- .* -->\n)+", "", path.read_text(encoding="utf-8"))
        # Code is left as it is: a fence, or lines with four spaces.
        parts = re.split(r"(^ *```.*?^ *```|^    [^\n]*$)", text, flags=re.DOTALL | re.MULTILINE)
        parts[::2] = [with_page_links(part, path, pages) for part in parts[::2]]
        text = with_anchors("".join(parts), page)
        (folder / f"{page}.md").write_text(text, encoding="utf-8")


def with_page_links(text, path, pages):
    def link(match):
        label, target, anchor = match[1], match[2], match[3]
        if "://" in target:
            return match[0]
        page = pages.get((path.parent / target).resolve() if target else path)
        if not page:
            return label
        # Doxygen shows the marks of code in such a link.
        return f"[{label.replace('`', '')}](@ref {page}{'-' + anchor if anchor else ''})"

    return re.sub(r"(?<!!)\[([^]]*)\]\(([^)#\s]*)(?:#([^)]*))?\)", link, text)


def with_anchors(text, page):
    """Names the page, and its headings by their words and a number, if need be, to be linked to."""
    seen = collections.Counter()

    def heading(match):
        words = re.sub(r"[^\w -]", "", match[2].lower()).replace(" ", "-")
        seen[words] += 1
        if seen[words] > 1:
            words += f"-{seen[words] - 1}"
        if match[1] != "#":
            return f"{match[0]} {{#{page}-{words}}}"
        return match[0] if page == "index" else f"{match[0]} {{#{page}}}"

    parts = re.split(r"(^```.*?^```)", text, flags=re.DOTALL | re.MULTILINE)
    parts[::2] = [re.sub(r"^(#+) (.*)$", heading, part, flags=re.MULTILINE) for part in parts[::2]]
    return "".join(parts)


class Reference:
    """Where things stand in the site, as Doxygen's tag file tells."""

    def __init__(self, tag_file):
        self.operations, self.enumerations, self.pages = {}, {}, []
        for compound in ElementTree.parse(tag_file).getroot():
            name = compound.findtext("name")
            if compound.get("kind") == "page":
                self.pages.append((compound.findtext("title"),
                                   with_suffix(compound.findtext("filename"))))
            for member in compound.iter("member"):
                url = f"{with_suffix(member.findtext('anchorfile'))}#{member.findtext('anchor')}"
                if name == CLASS and member.get("kind") in ("function", "slot", "signal"):
                    self.operations.setdefault(member.findtext("name"), []).append(
                        (member.findtext("arglist"), url))
                elif name == "lcm::EnumDetail" and member.get("kind") == "enumeration":
                    self.enumerations[member.findtext("name")] = url

    def url_of(self, code):
        """Of an operation, with or without its parameters, or of an enumeration."""
        operation = re.fullmatch(r"(\w+)(?:\((.*)\))?", code)
        if operation and operation[1] in self.operations:
            parameters = len([p for p in (operation[2] or "").split(",") if p.strip()])
            declared = self.operations[operation[1]]
            return next((url for arguments, url in declared
                         if len([p for p in arguments.strip("() const").split(",")
                                 if p.strip() and "=" not in p]) == parameters), declared[0][1])
        return self.enumerations.get(code.removeprefix("lcm::"))

    def linked(self, text, page):
        def link(match):
            is_link, code = match.groups()
            url = self.url_of(html.unescape(code))
            if is_link or not url or url.partition("#")[0] == page:
                return match[0]
            return f'<a class="el" href="{url}">{match[0]}</a>'

        return re.sub(r"(<a\b[^>]*>)?<code>([^<]*)</code>", link, text)


def with_suffix(name):
    return name if name.endswith(".html") else f"{name}.html"


def entries(reference):
    """What the search finds: an operation, an enumeration, a page."""
    root = ElementTree.parse(PROJECT / f"interface/{INTERFACE}.xml").getroot()
    for method in root.iter("method"):
        facts = {a.get("name"): a.get("value") for a in method.findall("annotation")}
        operation = facts[f"{INTERFACE}.Operation"]
        name = operation.partition("(")[0]
        text = facts["org.gtk.GDBus.DocString"]
        if method.get("name") != name:
            text += f" Calls {method.get('name')}."
        yield entry(name, reference.url_of(operation), text, facts[f"{INTERFACE}.Family"])
    for name, url in reference.enumerations.items():
        yield entry(f"lcm::{name}", url, "", "Enumerations")
    for title, url in reference.pages:
        yield entry(title, url, "", "Pages")


def entry(title, url, text, group):
    return {"title": title, "url": url, "text": text, "group": group}


if __name__ == "__main__":
    sys.exit(main())
