#!/usr/bin/env python3
"""Generates the C++ tables of CCSIDs, of their names, and of ICU's error codes.

generate_ccsid_tables.py --ccsids ccsids.tsv --names ccsid_names.tsv --icu icu_errors.tsv --out DIRECTORY

Writes ccsid_names.inc (sorted by what is compared), ccsid_name_order.inc (its indices, sorted by CCSID), ccsids.inc (sorted by number, because the search requires it, and with the enumerators, so that a row without
one does not compile) and icu_errors.inc (in the order of the file; if several rows have the same status, the first one
counts). Stops if the data violate an assumption of the code.
"""
import argparse
import csv
import pathlib
import sys

sys.dont_write_bytecode = True
from ccsid_name_keys import key

FLAGS = {0, 0x01, 0x02, 0x05, 0x06, 0x08, 0x09, 0x0A, 0x40}


def read(path):
    with open(path, newline="", encoding="ascii") as file:
        return list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))


def require(condition, message):
    if not condition:
        sys.exit(f"generate_ccsid_tables.py: {message}")


def ccsid_rows(rows):
    numbers = [int(row["ccsid"]) for row in rows]
    require(numbers[0] == 0 and rows[0]["name"] == "???", "row 0 is not the unknown CCSID")
    require(all(a < b for a, b in zip(numbers, numbers[1:])), "the CCSIDs are not in ascending order")
    for row in rows:
        require(int(row["flags"], 16) in FLAGS, f"unexpected flags of {row['ccsid']}")
        require(row["name"] and '"' not in row["name"], f"unexpected name of {row['ccsid']}")
    # "?\?" prevents the compiler from reading a trigraph.
    names = [row["name"].replace("??", "?" + chr(92) + "?") for row in rows]
    enumerators = ["CCSID_UNKNOWN", *(f"CCSID_{number}" for number in numbers[1:])]
    return [f'{{VelClCCSID::{enumerator}, {row["flags"]}, "{name}"}},'
            for row, enumerator, name in zip(rows, enumerators, names)]


def name_rows(rows):
    """Returns the rows of names, and their order by CCSID, in which the names of a CCSID stay in the order of the file."""
    names, counts = [], {}
    for row in rows:
        for name in row["names"].split():
            index = counts[row["ccsid"]] = counts.get(row["ccsid"], -1) + 1
            names.append((key(name), name, int(row["ccsid"]), index))
            require(not name.isdigit() and '"' not in name, f"unexpected name {name}")
    names.sort()
    require(len({name[0] for name in names}) == len(names), "two names are compared as equal")
    order = sorted(range(len(names)), key=lambda i: names[i][2:])
    return [f'{{"{k}", "{name}", {ccsid}, {index}}},' for k, name, ccsid, index in names], [f"{i}," for i in order]


def icu_rows(rows):
    require(len(rows) == 22, f"{len(rows)} errors of ICU instead of 22")
    return [
        f'{{{row["value"]}, {row["error_identifier"].replace("NO_ERROR", "VEL_NO_ERROR")}, '
        f'VelEnErrorClass::{row["class"]}, '
        f'VelEnErrorAction::{row["action"].replace("IGNORE", "NO_ACTION")}, '
        f'VelEnErrorSeverity::{row["severity"]}}},  // {row["icu_status"]}'
        for row in rows
    ]


def write(path, lines):
    path.write_text("\n".join(["// Made by generate_ccsid_tables.py.", *lines]) + "\n", encoding="ascii")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--ccsids", required=True, type=pathlib.Path)
    parser.add_argument("--names", required=True, type=pathlib.Path)
    parser.add_argument("--icu", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    write(options.out / "ccsids.inc", ccsid_rows(read(options.ccsids)))
    names, order = name_rows(read(options.names))
    write(options.out / "ccsid_names.inc", names)
    write(options.out / "ccsid_name_order.inc", order)
    write(options.out / "icu_errors.inc", icu_rows(read(options.icu)))


main()
