#!/usr/bin/env python3
"""Finds the names that the public headers declare for export.

    public_names.py --headers DIRECTORY --def FILE   writes a module-definition file with the plain functions, from
                                                     which an import library for compilers with another C++ ABI is made
"""
import argparse
import pathlib
import re


def declared(directory):
    """Returns three sets of names: plain functions, classes, and other functions and data."""
    text = "\n".join(path.read_text(encoding="utf-8") for path in sorted(directory.glob("*.h")))
    text = re.sub(r"//[^\n]*", "", text)
    plain = set(re.findall(r"^VEL_C_API\b[^;(]*?\b(\w+)\s*\(", text, re.MULTILINE))
    classes = set(re.findall(r"\b(?:class|struct) VEL_API (\w+)", text))
    functions = {name.replace(" ", "") for name in re.findall(r"^VEL_API\b[^;(]*?(operator\S+|\b\w+)\s*\(", text, re.MULTILINE)}
    # Declarations of data begin with "extern".
    functions |= set(re.findall(r"^extern VEL_API\b[^;(]*?(\w+);", text, re.MULTILINE))
    return plain, classes, functions


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--headers", required=True, type=pathlib.Path)
    parser.add_argument("--def", dest="definitions", required=True, type=pathlib.Path)
    arguments = parser.parse_args()
    names = sorted(declared(arguments.headers)[0])
    arguments.definitions.write_text("\n".join(["LIBRARY qamc5032.dll", "EXPORTS", *names, ""]), encoding="ascii")


if __name__ == "__main__":
    main()
