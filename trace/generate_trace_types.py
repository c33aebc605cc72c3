#!/usr/bin/env python3
"""Makes the C++ rows of the data types' names from trace_types.tsv.

generate_trace_types.py --types trace_types.tsv --out FILE

A type's number is its row's place, and part of the trace file's format: the script stops when they differ.
"""
import argparse
import csv
import pathlib
import sys


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--types", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    with open(options.types, newline="", encoding="ascii") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    if [row["value"] for row in rows] != [str(number) for number in range(22)]:
        sys.exit(f"{options.types}: the types are not numbered from 0 to 21")
    names = [(row["short_name"], row["long_name"]) for row in rows]
    if any('"' in name or "\\" in name for pair in names for name in pair):
        sys.exit(f"{options.types}: quotes and back-slashes are not expected")
    lines = ["// Made by generate_trace_types.py.", "constexpr TraceTypeNames kTypeNames[] = {"]
    lines += [f'    {{"{short}", "{long}"}},' for short, long in names]
    options.out.write_text("\n".join(lines + ["};"]) + "\n", encoding="ascii")


main()
