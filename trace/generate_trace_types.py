#!/usr/bin/env python3
"""Generates the C++ table of the data types' names from trace_types.tsv.

generate_trace_types.py --types trace_types.tsv --out FILE

The number of a type is the index of its row. To add a type, append a row: numbers in use are stored in trace files and
must never change. A record has 5 bits for the type, so the highest possible number is 31. Stops if a number is not the
index of its row, or does not fit into 5 bits.
"""
import argparse
import csv
import pathlib
import sys

TYPE_BITS = 5  # bits 0 to 4 of a record's first byte


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--types", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    with open(options.types, newline="", encoding="ascii") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    if [row["value"] for row in rows] != [str(number) for number in range(len(rows))]:
        sys.exit(f"{options.types}: the types are not numbered from 0 in steps of 1")
    if len(rows) > 1 << TYPE_BITS:
        sys.exit(f"{options.types}: type {len(rows) - 1} does not fit into the {TYPE_BITS} bits of a record")
    names = [(row["short_name"], row["long_name"]) for row in rows]
    if any('"' in name or "\\" in name for pair in names for name in pair):
        sys.exit(f"{options.types}: quotes and backslashes are not expected")
    lines = ["// Made by generate_trace_types.py.", "constexpr TraceTypeNames kTypeNames[] = {"]
    lines += [f'    {{"{short}", "{long}"}},' for short, long in names]
    options.out.write_text("\n".join(lines + ["};"]) + "\n", encoding="ascii")


main()
