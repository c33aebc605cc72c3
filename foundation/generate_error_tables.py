#!/usr/bin/env python3
"""Generates the C++ tables of errors from errors.tsv, status_errors.tsv and platform_errors.tsv.

generate_error_tables.py --errors errors.tsv --status status_errors.tsv --platform platform_errors.tsv --out DIRECTORY

Writes error_messages.inc (for each kind a sorted table of {value, message number}, and a static assertion for the value
of each enumerator), error_names.inc ({value, name} of all identifiers and of the classes, sorted by value) and
platform_errors.inc ({code, name}, sorted by the signed code). Stops if the data violate an assumption of the searches.
"""
import argparse
import csv
import pathlib
import sys

ENUMERATIONS = {
    "identifier": ("Identifier", "VelEnErrorId", False),
    "class": ("Class", "VelEnErrorClass", True),
    "severity": ("Severity", "VelEnErrorSeverity", True),
    "action": ("Action", "VelEnErrorAction", True),
}


def read(path):
    with open(path, newline="", encoding="ascii") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def require(condition, message):
    if not condition:
        sys.exit(f"generate_error_tables.py: {message}")


def require_ascending(values, what):
    require(all(a < b for a, b in zip(values, values[1:])), f"{what} are not in ascending order")


def message_tables(rows):
    lines = []
    for kind, (title, enumeration, scoped) in ENUMERATIONS.items():
        members = [row for row in rows if row["kind"] == kind]
        require(members, f"no rows of kind {kind}")
        require_ascending([int(row["value"]) for row in members], f"values of kind {kind}")
        prefix = f"{enumeration}::" if scoped else ""
        lines.append(f"constexpr MessageRow k{title}Messages[] = {{")
        lines += [f"    {{{row['value']}, {row['message_id']}}},  // {row['name']}" for row in members]
        lines.append("};")
        lines += [f"static_assert(static_cast<int>({prefix}{row['name']}) == {row['value']});" for row in members]
    return lines


def name_rows(title, rows):
    require_ascending([int(row["value"]) for row in rows], f"values of {title}")
    return [f"constexpr NameRow {title}[] = {{", *[f'    {{{row["value"]}, "{row["name"]}"}},' for row in rows], "};"]


def name_tables(rows, status_rows):
    identifiers = [row for row in rows if row["kind"] == "identifier"] + status_rows
    lines = name_rows("kIdentifierNames", identifiers)
    lines += name_rows("kClassNames", [row for row in rows if row["kind"] == "class"])
    lines += [f"static_assert(static_cast<int>({row['name']}) == {row['value']});" for row in status_rows]
    return lines


def platform_table(rows):
    require(len(rows) == 576, f"{len(rows)} platform errors instead of 576")
    require_ascending([int(row["code"]) for row in rows], "platform error codes")
    return [f'{{{row["code"]}, "{row["name"]}"}},' for row in rows]


def write(path, lines):
    path.write_text("// Made by generate_error_tables.py.\n" + "\n".join(lines) + "\n", encoding="ascii")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--errors", required=True)
    parser.add_argument("--status", required=True)
    parser.add_argument("--platform", required=True)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    arguments = parser.parse_args()
    errors = read(arguments.errors)
    write(arguments.out / "error_messages.inc", message_tables(errors))
    write(arguments.out / "error_names.inc", name_tables(errors, read(arguments.status)))
    write(arguments.out / "platform_errors.inc", platform_table(read(arguments.platform)))


main()
