#!/usr/bin/env python3
"""Compares the exported names of the built library with the declarations in the public headers and with the list of
names and virtual function slots that programs were linked with. A removed name, or a virtual function in another slot,
breaks these programs.

check_exports.py --headers DIRECTORY --library FILE [--def FILE] --list FILE [--renew]
                 --nm PROGRAM --objdump PROGRAM --cxxfilt PROGRAM [--symbols FILE --version VERSION]

The file with symbols is that of the Debian package: each exported name with the first version that has it.

Every exported name must be a plain function marked VEL_C_API, or belong to a class or function
marked VEL_API; and every plain function must be exported under its own name.
"""
import argparse
import pathlib
import re
import subprocess
import sys

from public_names import declared
from vtables import slots

CLASS_DATA = re.compile(r"^(?:typeinfo for|typeinfo name for|vtable for|guard variable for|VTT for) (\w+)$")
# The compiler for Windows exports the type information of some internal classes. Programs cannot use it: no public
# header has these classes.
INTERNAL_TYPE = re.compile(r"^typeinfo for vel::")
RENEW = """\
The exported names or virtual functions differ from {list}.
If you changed them on purpose, build the target renew_exported_names for both systems and commit the lists with the
change. Removed names and moved slots break linked programs and require a new SOVERSION."""


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


def check_declarations(arguments, mangled, exported):
    plain, classes, functions = declared(arguments.headers)
    undeclared = sorted({name for name in exported if not is_declared(name, plain, classes, functions)})
    missing = sorted(plain - set(mangled))
    for name in undeclared:
        print(f"exported but not declared: {name}")
    for name in missing:
        print(f"declared but not exported: {name}")
    print(f"{len(plain)} plain functions and {len(classes)} classes declared, {len(exported)} names exported")
    return not undeclared and not missing and bool(plain) and bool(exported)


def slot_lines(arguments, classes):
    for table, words in sorted(slots(arguments.library, arguments.nm, arguments.objdump).items()):
        name, *entries = demangled(arguments.cxxfilt, [table, *map(str, words)])
        if name.removeprefix("vtable for ") in classes:
            yield from (f"{name} [{slot:02}] {entry}" for slot, entry in enumerate(entries))


def check_list(arguments, exported):
    tables = list(slot_lines(arguments, declared(arguments.headers)[1]))
    current = sorted(set(exported)) + tables
    if arguments.renew:
        arguments.list.write_text("\n".join([*current, ""]), encoding="ascii")
    listed = arguments.list.read_text(encoding="ascii").splitlines()
    for sign, some, others in (("-", listed, set(current)), ("+", current, set(listed))):
        for line in some:
            if line not in others:
                print(sign, line)
    print(f"{len(tables)} slots of virtual functions")
    if listed != current:
        print(RENEW.format(list=arguments.list.name))
    return listed == current and bool(tables)


def version_of_line(line):
    name, _, version = line.strip().rpartition(" ")
    return name.removeprefix('(c++)"').removesuffix('"').removesuffix("@Base"), version


def symbol_line(name, version):
    return f' {name}@Base {version}' if name.isidentifier() else f' (c++)"{name}@Base" {version}'


def check_symbols(arguments, exported):
    """New names get the current version, and the others keep theirs."""
    lines = arguments.symbols.read_text(encoding="ascii").splitlines()
    versions = dict(version_of_line(line) for line in lines if line.startswith(" "))
    current = [line for line in lines if not line.startswith(" ")]
    current += [symbol_line(name, versions.get(name, arguments.version)) for name in sorted(set(exported))]
    if arguments.renew:
        arguments.symbols.write_text("\n".join([*current, ""]), encoding="ascii")
    elif current != lines:
        print(RENEW.format(list=arguments.symbols.name))
    return arguments.renew or current == lines


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--headers", required=True, type=pathlib.Path)
    parser.add_argument("--library", required=True, type=pathlib.Path)
    parser.add_argument("--def", dest="definitions", type=pathlib.Path)
    parser.add_argument("--list", required=True, type=pathlib.Path)
    parser.add_argument("--renew", action="store_true")
    parser.add_argument("--symbols", type=pathlib.Path)
    parser.add_argument("--version")
    for program in ("nm", "objdump", "cxxfilt"):
        parser.add_argument(f"--{program}", required=True)
    arguments = parser.parse_args()

    if arguments.definitions:
        mangled = names_of_def(arguments.definitions)
    else:
        mangled = names_of_library(arguments.nm, arguments.library)
    exported = [name for name in demangled(arguments.cxxfilt, mangled) if not INTERNAL_TYPE.match(name)]
    agrees = check_declarations(arguments, mangled, exported)
    agrees = (not arguments.symbols or check_symbols(arguments, exported)) and agrees
    sys.exit(0 if check_list(arguments, exported) and agrees else 1)


main()
