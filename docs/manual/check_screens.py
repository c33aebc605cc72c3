#!/usr/bin/env python3
"""Checks in a browser that no page of the built manual is wider than the screen and that the full-text search works, and
saves pictures of some pages.

check_screens.py --manual DIRECTORY --out DIRECTORY [--browser PROGRAM]

All pages are measured at the widths of a desktop and of a telephone. One page of frames loads them one after the other,
so that the browser starts only once for each width."""
import argparse
import html
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

WIDTHS = (1280, 390)
HEIGHT = 900
PICTURES = ("index", "tour", "worked-examples", "example-traced-service", "code-pages", "performance", "tool-velini",
            "architecture", "classVelClIniFileEditor", "vel__c_8h")
# The content of a wide page scrolls in a box of its own, so that box is measured, too.
MEASURE = """<!DOCTYPE html>
<iframe id="frame" style="border: 0; width: WIDTHpx; height: HEIGHTpx"></iframe>
<script>
const pages = PAGES, wide = [], frame = document.getElementById("frame");
let measured = 0;
function next() {
  if (measured === pages.length) {
    document.body.textContent = "result: " + JSON.stringify({measured, wide});
    return;
  }
  frame.onload = () => setTimeout(() => {
    const inner = frame.contentDocument;
    for (const box of [inner.documentElement, inner.body, inner.getElementById("doc-content")])
      if (box && box.scrollWidth > Math.min(box.clientWidth || WIDTH, WIDTH) + 1)
        wide.push(pages[measured] + ": " + (box.id || box.tagName) + " has " + box.scrollWidth);
    ++measured;
    next();
  }, 50);
  frame.src = FOLDER + pages[measured];
}
next();
</script>
"""


class Browser:
    def __init__(self, program, folder):
        self.command = [program, "--headless=new", "--disable-gpu", "--hide-scrollbars", "--allow-file-access-from-files",
                        f"--user-data-dir={folder}", "--no-first-run", "--disable-extensions"]
        if os.geteuid() == 0:
            self.command.append("--no-sandbox")  # the sandbox does not work for root

    def run(self, *arguments):
        done = subprocess.run([*self.command, *arguments], capture_output=True, timeout=600, check=False)
        if done.returncode != 0:
            sys.exit(done.stderr.decode(errors="replace"))
        return done.stdout.decode("utf-8")

    def picture(self, page, width, path, *more):
        self.run(f"--window-size={width},{HEIGHT}", "--virtual-time-budget=3000", f"--screenshot={path}", *more,
                 page.as_uri())

    def check_search(self, page):
        """The full-text search must find a class by a part of its name."""
        found = self.run("--virtual-time-budget=3000", "--dump-dom", page.as_uri() + "?q=inifileeditor+lock")
        if not re.search(r'<a href="classVelClIniFileEditor\.html#\w+">', found):
            sys.exit("the full-text search does not find VelClIniFileEditor::lock")

    def measure(self, manual, names, width, folder):
        """Returns a description of every page that is wider than the screen."""
        text = MEASURE.replace("PAGES", json.dumps(names)).replace("FOLDER", json.dumps(manual.as_uri() + "/"))
        measuring = folder / f"measure-{width}.html"
        measuring.write_text(text.replace("WIDTH", str(width)).replace("HEIGHT", str(HEIGHT)), encoding="utf-8")
        dumped = self.run(f"--virtual-time-budget={len(names) * 2000}", f"--window-size={width + 100},{HEIGHT}",
                          "--dump-dom", measuring.as_uri())
        found = re.search(r"result: (\{.*\})", dumped)
        result = json.loads(html.unescape(found[1])) if found else {"measured": 0}
        if result["measured"] != len(names):
            sys.exit(f"the browser measured {result['measured']} of {len(names)} pages")
        return result["wide"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--manual", type=pathlib.Path, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    parser.add_argument("--browser", default="chromium")
    arguments = parser.parse_args()
    manual, out = arguments.manual.resolve(), arguments.out.resolve()
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    names = sorted(path.name for path in manual.glob("*.html"))
    wide = []
    with tempfile.TemporaryDirectory() as folder:
        browser = Browser(arguments.browser, folder)
        browser.check_search(manual / "full-text-search.html")
        for width in WIDTHS:
            wide += [f"{width} pixels: {line}" for line in browser.measure(manual, names, width, pathlib.Path(folder))]
            for name in PICTURES:
                browser.picture(manual / f"{name}.html", width, out / f"{name}-{width}.png")
            browser.picture(manual / "performance.html", width, out / f"performance-{width}-dark.png",
                            "--force-dark-mode")
    if wide:
        sys.exit(f"{len(wide)} pages are wider than the screen:\n" + "\n".join(wide))
    print(f"{len(names)} pages fit; pictures are in {out}")


if __name__ == "__main__":
    main()
