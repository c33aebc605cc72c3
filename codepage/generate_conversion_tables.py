#!/usr/bin/env python3
"""Generates the C++ conversion tables from the mappings.

generate_conversion_tables.py --out DIRECTORY FILE...

Reads these mappings (mappings/README.md explains the format) and writes single_byte_tables.inc,
double_byte_tables.inc and reverse_tables.inc. tables/conversion_tables.h explains the layout. The bytes of each value
are swapped, so that the high byte comes first in the memory of a little-endian processor. Stops if a mapping violates
an assumption of the conversion functions.
"""
import argparse
import pathlib
import sys

REVERSE_CCSIDS = (500, 850)
REPLACEMENT = 0xFFFD
# A double-byte table has pages: page 0 has no mappings, page 1 has the single bytes, and each further page has the
# characters of one lead byte. Page numbers are indices of pages plus one.
UNMAPPED_PAGE_NUMBER = 1
SINGLE_BYTES_PAGE = 1
FIRST_ROW_PAGE_NUMBER = 3
# The bytes of line ends in EBCDIC pages with single bytes. codepage/conversion.h has the same numbers; the static
# assertions that this script writes compare them.
NEXT_LINE, NEXT_LINE_BYTE = 0x0085, 0x15
LINE_FEED, LINE_FEED_BYTE = 0x000A, 0x25
ROUND_TRIP, TO_UNICODE, FROM_UNICODE, SUBSTITUTED = "[round-trip]", "[to-unicode]", "[from-unicode]", "[substituted]"


def require(condition, message):
    if not condition:
        sys.exit(f"generate_conversion_tables.py: {message}")


def spread(token):
    """Returns the values of a token, which is one value or a run of consecutive values."""
    if "-" not in token:
        return [token]
    first, last = token.split("-")
    return [f"{value:0{len(first)}X}" for value in range(int(first, 16), int(last, 16) + 1)]


class Mapping:
    """A code page: `head` (keys and values), `to` (bytes to Unicode) and `back` (Unicode to bytes)."""

    def __init__(self, path):
        self.head, self.to, self.back = {}, {}, {}
        section = None
        for line in path.read_text(encoding="ascii").splitlines():
            if line.startswith("["):
                section = line
            elif section is None:
                key, value = line.split("\t")
                self.head[key] = value
            else:
                self.parse_line(section, *line.split(": "))
        self.ccsid = int(self.head["ccsid"])
        self.is_ebcdic = self.head["family"] == "ebcdic"

    def parse_line(self, section, start, values):
        position = int(start, 16)
        for token in values.split():
            for value in spread(token):
                self.add(section, f"{position:0{len(start)}X}", value)
                position += 1

    def add(self, section, key, value):
        if section in (ROUND_TRIP, TO_UNICODE):
            key = bytes.fromhex(key)
            require(key not in self.to, f"{key.hex()} is mapped twice")
            # A value that does not fit into one unit becomes the replacement character.
            self.to[key] = int(value, 16) if len(value) == 4 else REPLACEMENT
            if section == ROUND_TRIP and len(value) == 4:
                self.back[int(value, 16)] = key
        elif section == FROM_UNICODE:
            self.back[int(key, 16)] = bytes.fromhex(value)
        else:
            require(section == SUBSTITUTED, f"unknown section {section}")

    def single_bytes(self):
        unmapped = int(self.head.get("unmapped-single", f"{REPLACEMENT:04X}"), 16)
        return [self.to.get(bytes([byte]), unmapped) for byte in range(256)]

    def row(self, lead):
        return [self.to.get(bytes([lead, trail]), REPLACEMENT) for trail in range(256)]

    def leads_with_rows(self):
        return sorted({key[0] for key in self.to if len(key) == 2})

    def lead_marks(self):
        """Returns 1 for each byte that begins a double-byte character. A table of its own stores these marks."""
        marks = [0] * 256
        for part in self.head["lead-bytes"].split():
            first, _, last = part.partition("-")
            for lead in range(int(first, 16), int(last or first, 16) + 1):
                marks[lead] = 1
        return marks


def numbers(values, per_line=16):
    return [", ".join(values[i:i + per_line]) + "," for i in range(0, len(values), per_line)]


def units(values):
    return numbers([f"0x{(value & 0xFF) << 8 | value >> 8:04X}" for value in values])


def octets(values):
    return numbers([str(value) for value in values], 32)


def single_byte_tables(mappings):
    lines = ["constexpr SingleByteTable kSingleByteTables[] = {"]
    for mapping in mappings:
        lines += [f"{{{mapping.ccsid}, {{", *units(mapping.single_bytes()), "}},"]
    return lines + ["};"]


def proofs():
    values = {"kSingleBytesPage": SINGLE_BYTES_PAGE, "kNextLine": NEXT_LINE, "kNextLineByte": NEXT_LINE_BYTE,
              "kLineFeed": LINE_FEED, "kLineFeedByte": LINE_FEED_BYTE}
    return [f"static_assert(vel::codepage::{name} == {value});" for name, value in values.items()]


def double_byte_tables(mappings):
    lines, heads = proofs(), []
    for mapping in mappings:
        name, leads = mapping.ccsid, mapping.leads_with_rows()
        pages = [[REPLACEMENT] * 256, mapping.single_bytes(), *(mapping.row(lead) for lead in leads)]
        require(all(NEXT_LINE not in page for page in pages[2:]), f"{name}: a double-byte next line")
        if mapping.is_ebcdic and pages[SINGLE_BYTES_PAGE] != pages[0]:
            lines_at = [pages[SINGLE_BYTES_PAGE].index(unit) for unit in (NEXT_LINE, LINE_FEED)]
            require(lines_at == [NEXT_LINE_BYTE, LINE_FEED_BYTE], f"{name}: line ends are elsewhere")
            require(pages[SINGLE_BYTES_PAGE].count(NEXT_LINE) == 1, f"{name}: two next lines")
        require(FIRST_ROW_PAGE_NUMBER + len(leads) <= 256, f"too many rows in {name}")
        page_numbers = [UNMAPPED_PAGE_NUMBER] * 256
        for index, lead in enumerate(leads):
            page_numbers[lead] = FIRST_ROW_PAGE_NUMBER + index
        lines.append(f"constexpr std::uint16_t kPages{name}[][256] = {{")
        for page in pages:
            lines += ["{", *units(page), "},"]
        lines.append("};")
        marks = "nullptr"
        if not mapping.is_ebcdic:
            marks = f"kLeads{name}"
            lead_marks = mapping.lead_marks()
            require(all(lead_marks[lead] for lead in leads), f"{name}: a row without a lead byte")
            lines += [f"constexpr std::uint8_t {marks}[256] = {{", *octets(lead_marks), "};"]
        heads += [f"{{{name}, {int(mapping.is_ebcdic)}, {{", *octets(page_numbers), f"}}, nullptr, kPages{name}, {marks}}},"]
    return lines + ["constexpr DoubleByteTable kDoubleByteTables[] = {", *heads, "};"]


def reverse_table(mapping):
    substitution = int(mapping.head["substitution"], 16)
    rows = {}
    for unit, key in mapping.back.items():
        require(unit < 0x10000 and len(key) == 1, f"{mapping.ccsid}: a reverse mapping that does not fit")
        rows.setdefault(unit >> 8, [substitution] * 256)[unit & 0xFF] = key[0]
    # Page 1 serves all high bytes without a mapping.
    index, pages = [1] * 256, [[substitution] * 256]
    for high in sorted(rows):
        pages.append(rows[high])
        index[high] = len(pages)
    lines = [f"constexpr std::uint8_t kReverse{mapping.ccsid}[][256] = {{"]
    for page in [index, *pages]:
        lines += ["{", *octets(page), "},"]
    return lines + ["};"]


def reverse_tables(mappings):
    lines = [line for mapping in mappings for line in reverse_table(mapping)]
    heads = [f"{{{mapping.ccsid}, kReverse{mapping.ccsid}[0]}}," for mapping in mappings]
    return lines + ["constexpr ReverseTable kReverseTables[] = {", *heads, "};"]


def write(path, lines):
    path.write_text("\n".join(["// Made by generate_conversion_tables.py.", *lines]) + "\n", encoding="ascii")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("mappings", nargs="+", type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    mappings = sorted(map(Mapping, options.mappings), key=lambda mapping: mapping.ccsid)
    single = [mapping for mapping in mappings if mapping.head["kind"] == "sbcs"]
    double = [mapping for mapping in mappings if mapping.head["kind"] == "dbcs"]
    require(len(single) + len(double) == len(mappings), "a mapping of another kind than sbcs and dbcs")
    write(options.out / "single_byte_tables.inc", single_byte_tables(single))
    write(options.out / "double_byte_tables.inc", double_byte_tables(double))
    write(options.out / "reverse_tables.inc", reverse_tables([m for m in single if m.ccsid in REVERSE_CCSIDS]))


main()
