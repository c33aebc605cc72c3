#!/usr/bin/env python3
"""Makes the manual as HTML: the reference of the public headers, and the pages in this directory.

make_manual.py [--doxygen PROGRAM] [--theme DIRECTORY] --out DIRECTORY

Prepares all input in DIRECTORY and runs Doxygen there. Warnings of Doxygen and broken links are errors, and so is a
public class that no example uses. Without the theme, the style sheets of Debian's doxygen-awesome-css, the manual has
the same content and Doxygen's own look."""
import argparse
import csv
import pathlib
import re
import shutil
import subprocess
import sys

import charts
import check_links
import full_text
import headers
import pages

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def ccsid_words():
    """Returns the description of each CCSID for the reference: the kind of its code page."""
    result = {}
    with open(ROOT / "codepage/ccsids.tsv", newline="", encoding="ascii") as file:
        for row in csv.DictReader(file, delimiter="\t"):
            result[int(row["ccsid"])] = pages.kind_of(row) + "."
    return result


def prepare_settings(out, theme):
    """Copies the style sheets to the prepared input, because Doxygen's settings must not contain machine paths."""
    sheets = [theme / name for name in ("doxygen-awesome.css", "doxygen-awesome-sidebar-only.css")]
    if not all(sheet.is_file() for sheet in sheets):
        print(f"without the theme: {theme} does not have it", file=sys.stderr)
        sheets = []
    sheets.append(ROOT / "docs/manual/manual.css")
    for sheet in sheets:
        shutil.copy(sheet, out / "input")
    shutil.copy(ROOT / "docs/manual/full-text.js", out / "input")
    version = re.search(r"project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
    settings = (ROOT / "docs/manual/Doxyfile").read_text(encoding="utf-8")
    settings += f"PROJECT_NUMBER = {version}\nHTML_EXTRA_STYLESHEET = " + " ".join(f"input/{s.name}" for s in sheets)
    (out / "Doxyfile").write_text(settings + "\n", encoding="utf-8")


def prepare(out):
    shutil.rmtree(out, ignore_errors=True)
    (out / "input").mkdir(parents=True)
    words = ccsid_words()
    files = sorted((ROOT / "vel_include").glob("*.h"))
    for header in files:
        top_lines = headers.plain_functions(files) if header.name == "vel_c.h" else ()
        text = headers.prepared(header.read_text(encoding="utf-8"), words, top_lines)
        (out / "input" / header.name).write_text(text, encoding="utf-8")
    for page in sorted((ROOT / "docs/manual").glob("*.md")):
        (out / "input" / page.name).write_text(pages.expanded(page, ROOT), encoding="utf-8")
    charts.write_pictures(pages.rows_of(ROOT / "docs/manual/ratios.tsv"), out / "input")


def check_classes():
    """Stops if a public class occurs neither in an example nor in the code of a page."""
    code = "".join(path.read_text(encoding="utf-8") for path in sorted((ROOT / "examples").rglob("*.cpp")))
    for page in (ROOT / "docs/manual").glob("*.md"):
        code += "".join(re.findall(r"^```.*?^```", page.read_text(encoding="utf-8"), re.M | re.S))
    used = set(re.findall(r"\w+", re.sub(r"//.*", "", code)))
    names = {name for header in (ROOT / "vel_include").glob("*.h")
             for name in headers.NAMED_SCOPE_AT_START.findall(header.read_text(encoding="utf-8"))}
    if missing := sorted(names - used):
        sys.exit("no example uses " + ", ".join(missing))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--doxygen", default="doxygen")
    parser.add_argument("--theme", type=pathlib.Path, default="/usr/share/doxygen-awesome-css")
    parser.add_argument("--out", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    out = arguments.out.resolve()
    check_classes()
    prepare(out)
    prepare_settings(out, arguments.theme)
    made = subprocess.run([arguments.doxygen, "Doxyfile"], cwd=out, stdout=subprocess.DEVNULL)
    if made.returncode != 0:
        sys.exit(made.returncode)
    full_text.write_index(out)
    count, broken = check_links.broken_links(out)
    if broken:
        sys.exit(f"{len(broken)} of {count} links are broken:\n" + "\n".join(broken))


if __name__ == "__main__":
    main()
