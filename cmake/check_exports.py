#!/usr/bin/env python3
"""Compares what the built library exports with what the public headers declare.

check_exports.py --headers DIRECTORY --cxxfilt PROGRAM (--nm PROGRAM --library FILE | --def FILE)

Every exported name must be a plain function marked VEL_C_API, or belong to a class or function
marked VEL_API; and every plain function must be exported under its own name.
"""
import argparse
import pathlib
import re
import subprocess
import sys

CLASS_DATA = re.compile(r"^(?:typeinfo for|typeinfo name for|vtable for|guard variable for|VTT for) (\w+)$")


def declared(directory):
    text = "\n".join(path.read_text(encoding="utf-8") for path in sorted(directory.glob("*.h")))
    text = re.sub(r"//[^\n]*", "", text)
    plain = set(re.findall(r"^VEL_C_API\b[^;(]*?\b(\w+)\s*\(", text, re.MULTILINE))
    classes = set(re.findall(r"\b(?:class|struct) VEL_API (\w+)", text))
    functions = {name.replace(" ", "") for name in re.findall(r"^VEL_API\b[^;(]*?(operator\S+|\b\w+)\s*\(", text, re.MULTILINE)}
    # Data is told apart by its leading word.
    functions |= set(re.findall(r"^extern VEL_API\b[^;(]*?(\w+);", text, re.MULTILINE))
    return plain, classes, functions


def names_of_library(nm, library):
    output = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    return [line.split()[-1].split("@")[0] for line in output.splitlines()]


def names_of_def(path):
    lines = path.read_text(encoding="ascii").splitlines()
    return [line.split("@")[0].split()[0] for line in lines if "@" in line and not line.startswith(";")]


def demangled(cxxfilt, names):
    output = subprocess.run([cxxfilt], input="\n".join(names), check=True, capture_output=True, text=True).stdout
    return output.splitlines()


def is_declared(name, plain, classes, functions):
    if name in plain:
        return True
    data = CLASS_DATA.match(name)
    owner = data.group(1) if data else name.split("(")[0].split("::")[0].split()[-1]
    return owner in classes or name.split("(")[0] in functions


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--headers", required=True, type=pathlib.Path)
    parser.add_argument("--cxxfilt", default="c++filt")
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--library", type=pathlib.Path)
    parser.add_argument("--def", dest="definitions", type=pathlib.Path)
    arguments = parser.parse_args()

    plain, classes, functions = declared(arguments.headers)
    if arguments.definitions:
        mangled = names_of_def(arguments.definitions)
    else:
        mangled = names_of_library(arguments.nm, arguments.library)
    exported = demangled(arguments.cxxfilt, mangled)
    undeclared = sorted({name for name in exported if not is_declared(name, plain, classes, functions)})
    missing = sorted(plain - set(mangled))
    for name in undeclared:
        print(f"exported but not declared: {name}")
    for name in missing:
        print(f"declared but not exported: {name}")
    print(f"{len(plain)} plain functions and {len(classes)} classes declared, {len(exported)} names exported")
    sys.exit(1 if undeclared or missing or not plain or not exported else 0)


main()
