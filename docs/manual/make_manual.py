#!/usr/bin/env python3
"""Makes the manual as HTML: the reference of the public headers, and the pages in this directory.

make_manual.py [--doxygen PROGRAM] --out DIRECTORY

Prepares all input in DIRECTORY and runs Doxygen there. Warnings of Doxygen are errors."""
import argparse
import csv
import pathlib
import re
import shutil
import subprocess
import sys

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


def prepare(out):
    shutil.rmtree(out, ignore_errors=True)
    (out / "input").mkdir(parents=True)
    words = ccsid_words()
    for header in sorted((ROOT / "vel_include").glob("*.h")):
        text = headers.prepared(header.read_text(encoding="utf-8"), words)
        (out / "input" / header.name).write_text(text, encoding="utf-8")
    for page in sorted((ROOT / "docs/manual").glob("*.md")):
        (out / "input" / page.name).write_text(pages.expanded(page, ROOT), encoding="utf-8")


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
    parser.add_argument("--out", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    out = arguments.out.resolve()
    check_classes()
    prepare(out)
    shutil.copy(ROOT / "docs/manual/Doxyfile", out)
    sys.exit(subprocess.run([arguments.doxygen, "Doxyfile"], cwd=out, stdout=subprocess.DEVNULL).returncode)


if __name__ == "__main__":
    main()
