#!/usr/bin/env python3
"""Generates the C++ tables of languages and territories from languages.tsv and territories.tsv.

generate_languages.py --languages languages.tsv --territories territories.tsv --out FILE

The number of a language is the index of its row. Stops if the rows are not sorted by their two-letter code, which the
binary search requires. language.cpp checks that the number of rows is the one of the interface.
"""
import argparse
import csv
import pathlib
import sys

TABLES = {
    "languages": ("LanguageRow kLanguages", lambda row: f'{{"{row["code"]}", "{row["name"]}"}}'),
    "territories": (
        "TerritoryRow kTerritories",
        lambda row: f'{{"{row["code2"]}", "{row["code3"]}", {int(row["numeric"])}, "{row["name"]}"}}',
    ),
}


def rows_of(path):
    with open(path, newline="", encoding="ascii") as file:
        rows = list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))
    codes = [next(iter(row.values())) for row in rows]
    if any(a >= b for a, b in zip(codes, codes[1:])) or any(len(code) != 2 for code in codes):
        sys.exit(f"{path}: the two-letter codes are not in ascending order")
    if any('"' in value or "\\" in value for row in rows for value in row.values()):
        sys.exit(f"{path}: quotes and backslashes are not expected")
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--languages", required=True, type=pathlib.Path)
    parser.add_argument("--territories", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    lines = ["// Made by generate_languages.py."]
    for name, (declaration, row_text) in TABLES.items():
        lines.append(f"constexpr {declaration}[] = {{")
        lines += [f"    {row_text(row)}," for row in rows_of(getattr(options, name))]
        lines.append("};")
    options.out.write_text("\n".join(lines) + "\n", encoding="ascii")


main()
