#!/usr/bin/env python3
"""Generates the built-in message table and the message source of the catalog library.

Both are generated from messages.tsv (id, English, German; UTF-8, with the escapes \\n, \\t and \\\\), so that a message
has the same text in both. If a row violates an assumption of the library, the build stops with an error that names
the row.

    generate_messages.py --table messages.tsv --inc built_in_messages.inc --mc qammsg50.mc
"""

import argparse
import re
import sys

# The first text of a string table: this word, a blank, and the number of the table's texts.
SIGNATURE_WORD = "[VEL_MSGTAB_SIGNATURE]"
HEADER = ["id", "english", "german"]
# These names must differ from those that the message compiler predefines.
LANGUAGES = [("TableEnglish", 0x409), ("TableGerman", 0x407)]
ESCAPES = {"n": "\n", "t": "\t", "\\": "\\"}
# Texts must be mappable to the code page of single-byte programs on German systems.
GERMAN_CODE_PAGE = "cp1252"


class TableError(Exception):
    """A row that violates an assumption of the library."""


def require(condition, row_id, problem):
    if not condition:
        raise TableError(f"message {row_id}: {problem}")


def unescape(text, row_id):
    def replace(match):
        require(match.group(1) in ESCAPES, row_id, f"unknown escape {match.group(0)!r}")
        return ESCAPES[match.group(1)]

    return re.sub(r"\\(.?)", replace, text)


def read_table(path):
    """Returns the rows as (English, German) in id order."""
    with open(path, encoding="utf-8", newline="") as file:
        lines = file.read().split("\n")
    require(lines.pop() == "", "table", "the last line has no line end")
    require(lines[0].split("\t") == HEADER, "table", f"the columns are not {HEADER}")
    rows = []
    for expected_id, line in enumerate(lines[1:]):
        columns = line.split("\t")
        require(len(columns) == len(HEADER), expected_id, f"{len(columns)} columns")
        require(columns[0] == str(expected_id), expected_id, f"id {columns[0]!r} is in its place")
        rows.append(tuple(unescape(text, expected_id) for text in columns[1:]))
    return rows


def check_inserts(text, row_id):
    """Allows only inserts that string tables and catalog libraries expand in the same way."""
    for match in re.finditer(r"%(%|[0-9]*)(?=(.?))", text, re.DOTALL):
        kind, following = match.groups()
        known = kind == "%" or (kind and kind[0] != "0" and int(kind) <= 10)
        require(known, row_id, f"{match.group(0)!r} is neither %% nor %1 to %10")
        require(kind == "%" or following != "!", row_id, "an insert is followed by '!'")


def inserts(text):
    return sorted(found for found in re.findall(r"%(?:%|[0-9]+)", text) if found != "%%")


def outer_blanks(text):
    return len(text) - len(text.lstrip()), len(text) - len(text.rstrip())


def check_text(text, row_id):
    check_inserts(text, row_id)
    lines = text.split("\n")
    require("." not in lines, row_id, "a line that is a single dot would end it in the message source")
    require(all(c in "\n\t" or c.isprintable() for c in text), row_id, "control character")


def check_row(row_id, english, german):
    require(english.isascii(), row_id, "the English text is not ASCII")
    check_text(english, row_id)
    check_text(german, row_id)
    require(inserts(english) == inserts(german), row_id, "the languages differ in their inserts")
    require(outer_blanks(english) == outer_blanks(german), row_id, "the languages differ in outer blanks")
    try:
        german.encode(GERMAN_CODE_PAGE)
    except UnicodeEncodeError as error:
        raise TableError(f"message {row_id}: German is not {GERMAN_CODE_PAGE}: {error}") from error


def check_table(rows):
    # The only place where the number is typed, so that a row that is lost by mistake stops the build.
    signature = f"{SIGNATURE_WORD} {len(rows)}"
    require(set(rows[0]) == {signature}, 0, f"is not {signature!r}")
    for row_id, (english, german) in enumerate(rows):
        check_row(row_id, english, german)


def c_literal(text):
    for char, escape in (("\\", "\\\\"), ('"', '\\"'), ("\n", "\\n"), ("\t", "\\t")):
        text = text.replace(char, escape)
    return f'"{text}"'


def make_inc(rows):
    lines = ["// Made by generate_messages.py from messages.tsv. Texts in id order, from 0."]
    lines += [f"{c_literal(english)},  // {row_id}" for row_id, (english, _) in enumerate(rows)]
    return "\n".join(lines) + "\n"


def mc_text(text):
    # Without %0 the formatter adds a line break; an empty text would end the formatter with an error.
    return (text or " ") + "%0"


def make_mc(rows):
    lines = ["; // Made by generate_messages.py from messages.tsv.", ""]
    lines += ["SeverityNames=(PlainSeverity=0x0)", "FacilityNames=(PlainFacility=0x0)"]
    lines += [f"LanguageNames=({name}=0x{number:x}:{name})" for name, number in LANGUAGES]
    for row_id, texts in enumerate(rows):
        if row_id == 0:
            continue  # the signature line belongs to the built-in table only
        lines += ["", f"MessageId={row_id}", "Severity=PlainSeverity", "Facility=PlainFacility"]
        for (name, _), text in zip(LANGUAGES, texts):
            lines += [f"Language={name}", mc_text(text), "."]
    return "\n".join(lines) + "\n"


def write(path, content):
    with open(path, "w", encoding="utf-8", newline="\n") as file:
        file.write(content)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--table", required=True, help="messages.tsv")
    parser.add_argument("--inc", required=True, help="C++ string literals to write")
    parser.add_argument("--mc", required=True, help="message source to write")
    options = parser.parse_args()
    try:
        rows = read_table(options.table)
        check_table(rows)
    except (OSError, UnicodeError, TableError) as error:
        sys.exit(f"{options.table}: {error}")
    write(options.inc, make_inc(rows))
    write(options.mc, make_mc(rows))


if __name__ == "__main__":
    main()
