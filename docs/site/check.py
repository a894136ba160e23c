#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks a built site: its links, and in a browser its width on a phone and on a desk, and its search."""

import argparse
import html
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import urllib.parse

WIDTHS = (400, 1400)
# Which entry a query must find first, or that its first ones must all be about.
QUERIES = {
    "setOddLowPulseTime": "setOddLowPulseTime",
    "odd low pulse": "OddLowPulse",
    "hammer": "Hammer",
}

# Shows each page in a frame, one after the other, and leaves what it has seen as JSON. A frame is a
# viewport of its own: a page knows of no other width.
PROBE = """<!DOCTYPE html><meta charset="utf-8"><pre id="seen"></pre><script>
async function show(url, width) {
    const frame = document.createElement("iframe");
    frame.style = `width: ${width}px; height: 900px; border: 0`;
    const loaded = new Promise((resolve) => { frame.onload = resolve; });
    frame.src = url;
    document.body.append(frame);
    await loaded;
    return frame;
}
async function run(pages, widths, queries) {
    const seen = { widths: [], found: {} };
    for (const page of pages)
        for (const width of widths) {
            const frame = await show(page, width);
            seen.widths.push([page, width, frame.contentDocument.documentElement.scrollWidth]);
            frame.remove();
        }
    for (const [url, query] of queries) {
        const frame = await show(url, 400);
        seen.found[query] = [...frame.contentDocument.querySelectorAll("#results a")]
            .map((link) => [link.textContent, link.href]);
        frame.remove();
    }
    document.getElementById("seen").textContent = JSON.stringify(seen);
}
run(PAGES, WIDTHS, QUERIES);
</script>"""


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("site", type=pathlib.Path, help="the folder of index.html")
    site = parser.parse_args().site.resolve()
    problems = [*broken_links(site)]
    obstacle = why_there_is_no_browser()
    if not obstacle:
        problems += browser_problems(site)
    print("\n".join(problems) or f"{len(list(site.glob('*.html')))} pages: links are good, "
          + (f"chromium does not run here: {obstacle}" if obstacle else "and so are widths and search"))
    return 1 if problems else 0


def broken_links(site):
    pages = {path.name: path.read_text(encoding="utf-8") for path in site.glob("*.html")}
    anchors = {name: set(re.findall(r'\b(?:id|name)="([^"]+)"', text))
               for name, text in pages.items()}
    targets = {(name, html.unescape(target)) for name, text in pages.items()
               for target in re.findall(r'\b(?:href|src)="([^"]*)"', text)}
    index = json.loads((site / "search-index.js").read_text(encoding="utf-8")
                       .removeprefix("const searchIndex = ").rstrip(";\n"))
    targets |= {("search.html", entry["url"]) for entry in index}
    if len(index) < 500 or len(targets) < 1000:
        yield "hardly any links were found"
    for name, target in sorted(targets):
        url = urllib.parse.urlsplit(target)
        if url.scheme in ("http", "https", "mailto", "data"):
            continue
        file = urllib.parse.unquote(url.path) or name
        if not (site / file).exists():
            yield f"{name}: no such file: {target}"
        elif url.fragment and urllib.parse.unquote(url.fragment) not in anchors.get(file, ()):
            yield f"{name}: no such place: {target}"


def browser_problems(site):
    pages = [path.as_uri() for path in sorted(site.glob("*.html")) if is_read(path.name)]
    queries = [((site / "search.html").as_uri() + "#" + urllib.parse.quote(query), query)
               for query in QUERIES]
    seen = seen_in_browser(pages, queries)
    if len(seen["widths"]) != len(pages) * len(WIDTHS):
        yield "the browser has not shown all pages"
    for page, width, content in seen["widths"]:
        if content > width:
            yield f"{page}: {content} pixels wide on a screen of {width}"
    for query, expected in QUERIES.items():
        titles = [title for title, _ in seen["found"][query]]
        if not titles or expected not in titles[0]:
            yield f"search for {query!r} has found first: {titles[:3]}"


def is_read(name):
    """Not what Doxygen adds for itself: listings of sources, of folders and of members."""
    return not re.search(r"^dir_|_source\.html$|-members\.html$", name)


def dom_of(url, folder, *options, timeout):
    """What a browser makes of a page."""
    # The pages are this project's own, and root and containers can have no sandbox.
    browser = subprocess.run(
        ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
         f"--user-data-dir={folder}/profile", *options, "--dump-dom", url],
        capture_output=True, text=True, timeout=timeout, check=False)
    return browser.stdout, browser.stderr


def why_there_is_no_browser():
    """Nothing where it runs: a container may not have what it takes."""
    with tempfile.TemporaryDirectory() as folder:
        try:
            text, errors = dom_of("data:text/html,<p>shown</p>", folder, timeout=120)
        except subprocess.TimeoutExpired:
            return "it has not ended in two minutes"
        return "" if "shown" in text else errors.strip() or "it shows nothing"


def seen_in_browser(pages, queries):
    probe = (PROBE.replace("PAGES", json.dumps(pages)).replace("WIDTHS", json.dumps(WIDTHS))
             .replace("QUERIES", json.dumps(queries)))
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "probe.html"
        file.write_text(probe, encoding="utf-8")
        text, errors = dom_of(file.as_uri(), folder, "--hide-scrollbars",
                              "--allow-file-access-from-files", "--window-size=1500,1000",
                              "--virtual-time-budget=600000", timeout=900)
    seen = re.search(r'<pre id="seen">(.+?)</pre>', text, re.DOTALL)
    if not seen:
        sys.exit(f"the browser has shown nothing:\n{errors}")
    return json.loads(html.unescape(seen[1]))


if __name__ == "__main__":
    sys.exit(main())
