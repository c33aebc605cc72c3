#!/usr/bin/env python3
"""Lists the lines and branches that no test reached, and compares them with the list of justified ones.

unreached.py --root DIRECTORY --list FILE --out FILE ROOM... <(llvm-cov export)

A row of the list has five columns: the file, what is missing, where, the text of the source line, and the reason.
What is missing is one of these:
  lines  unreached lines, of which this is the first; the third column is their number
  true   a condition on this line that is never true; the third column is the condition
  false  a condition on this line that is never false; the third column is the condition
"perhaps true" and "perhaps false" are for conditions that depend on chance: such a row only requires that the line
exists. Fails for each unreached place without a row, and for each row without an unreached place. Code that does not
run only because a listed condition never has the required value needs no row of its own.
"""
import argparse
import collections
import json
import os
import pathlib
import sys

Place = collections.namedtuple("Place", "file line missing where text")
Row = collections.namedtuple("Row", "file missing where text reason")
PERHAPS = "perhaps "


def lines_without_count(segments):
    by_line = collections.defaultdict(list)
    for line, _, count, has_count, is_entry, is_gap in segments:
        by_line[line].append((count, has_count, is_entry, is_gap))
    before = (0, False, False, False)
    for line in range(segments[0][0], segments[-1][0] + 1):
        here = by_line[line]
        counts = [count for count, has_count, is_entry, is_gap in here if has_count and is_entry and not is_gap]
        is_skipped = here and here[0][2] and not here[0][1]
        if not is_skipped and (counts or before[1]) and max([before[0], *counts]) == 0:
            yield line
        before = here[-1] if here else before


def unreached_lines(segments):
    """Returns the first line and the length of each run of consecutive lines."""
    runs = []
    for line in lines_without_count(segments) if segments else ():
        if runs and line == sum(runs[-1]):
            runs[-1][1] += 1
        else:
            runs.append([line, 1])
    return runs


def unreached_outcomes(branches):
    """Adds up all instances of a template. A condition that was never evaluated is left out: the reason is elsewhere."""
    sums = collections.defaultdict(lambda: [0, 0])
    for *place, true_count, false_count, _, _, _ in branches:
        sums[tuple(place)][0] += true_count
        sums[tuple(place)][1] += false_count
    for place, counts in sorted(sums.items()):
        if sum(counts) > 0 and 0 in counts:
            yield place, "true" if counts[0] == 0 else "false"


def path_of(file):
    return pathlib.Path(os.path.normpath(file["filename"]))


def is_wanted(file, root, rooms):
    path = path_of(file)
    folders = path.parent.relative_to(root).parts if path.is_relative_to(root) else ()
    return bool(folders) and folders[0] in rooms and "test" not in folders and not path.stem.endswith("_test")


def places(file, root):
    name = str(path_of(file).relative_to(root))
    texts = (root / name).read_text(encoding="utf-8").splitlines()
    for line, count in unreached_lines(file["segments"]):
        yield Place(name, line, "lines", str(count), texts[line - 1].strip())
    for (line, column, end_line, end_column), missing in unreached_outcomes(file["branches"]):
        text = texts[line - 1]
        condition = text[column - 1:end_column - 1 if end_line == line else None]
        yield Place(name, line, missing, condition, text.strip())


def key(place_or_row):
    return place_or_row.file, place_or_row.missing.removeprefix(PERHAPS), place_or_row.where, place_or_row.text


def is_idle(row, found_keys, root):
    if row.missing.startswith(PERHAPS) and (root / row.file).exists():
        return row.text not in map(str.strip, (root / row.file).read_text(encoding="utf-8").splitlines())
    return key(row) not in found_keys


def read_rows(path):
    lines = [line for line in path.read_text(encoding="utf-8").splitlines() if not line.startswith("# ")]
    return [Row(*line.split("\t")) for line in lines[1:]]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", type=pathlib.Path, required=True)
    parser.add_argument("--list", type=pathlib.Path, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    parser.add_argument("rooms", nargs="+")
    arguments = parser.parse_args()
    files = [file for file in json.load(sys.stdin)["data"][0]["files"]
             if is_wanted(file, arguments.root, arguments.rooms)]
    found = sorted({place for file in files for place in places(file, arguments.root)})
    rows = read_rows(arguments.list)
    justified_keys, found_keys = set(map(key, rows)), set(map(key, found))
    unjustified = [place for place in found if key(place) not in justified_keys]
    idle = [row for row in rows if is_idle(row, found_keys, arguments.root)]
    shown = [f"{place.file}:{place.line}\t{place.missing}\t{place.where}\t{place.text}\n" for place in found]
    arguments.out.write_text("".join(shown), encoding="utf-8")
    for place in unjustified:
        print(f"not reached: {place.file}:{place.line}, {place.missing}: {place.where} in: {place.text}")
    for row in idle:
        print(f"reached, or not there: {row.file}, {row.missing}: {row.where} in: {row.text}")
    print(f"{len(found)} places not reached, {len(found) - len(unjustified)} justified by {len(rows)} rows")
    sys.exit(1 if unjustified or idle or not files else 0)


main()
