#!/usr/bin/env python3
"""Imports the names of code pages from the installed ICU, whose table of aliases has the names of IANA, MIME and iconv,
and writes ccsid_names.tsv.

import_ccsid_names.py --icu libicuuc.so.72 --ccsids ccsids.tsv --out ccsid_names.tsv

A name gets the CCSID that ICU gives the converter it opens under this name; ASSIGNED lists the converters that have no
CCSID there, or for which the library uses another one. Names of converters that cannot be opened by a CCSID are
omitted, and so are names that begin with the name of a maker of computers and names that consist of digits only, which
are CCSIDs. The columns "differences" and "why" are kept from the old file; ccsid_names_test.cpp tests them.
"""
import argparse
import csv
import ctypes
import pathlib
import re

from ccsid_name_keys import key

ASSIGNED = {
    "UTF-16BE": 65500,
    "UTF-16LE": 65501,
    # The table of CCSIDs has these names with the CCSIDs of the older editions, without the euro sign.
    "ISO-8859-7": 813,
    "ISO-8859-8": 916,
    # The library opens 943 by name, because ICU has two editions.
    "Shift_JIS": 943,
    "Big5": 1373,
    "EUC-JP": 954,
    "GBK": 1386,
    "windows-874": 1162,
}
# Converters of texts that begin with a byte order mark, that keep more state than a shift, or whose units have four
# bytes; and names that mean another page elsewhere, or a variant. CCSID00858 and the like are not names but numbers.
OMITTED_CONVERTERS = re.compile(r"UTF-(16|7)$|UTF-?32|SCSU|BOCU|CESU|LMBCS|ISO_2022|ISCII|Platform|Opposite|IMAP|HZ|,")
OMITTED_NAMES = re.compile(r"(CP|CCSID)0[01]\d+|CP943$|CP1200|x-JISAutoDetect|x-MS932_0213|-20\d\d$|,", re.IGNORECASE)
COLUMNS = ["ccsid", "names", "differences", "why"]


class Icu:
    """ICU's table of aliases."""

    def __init__(self, path):
        self.library = ctypes.CDLL(path)
        self.suffix = "_" + path.rsplit(".", 1)[1]
        text, number = ctypes.c_char_p, ctypes.c_int
        self.count = self.bind("countAvailable", number)
        self.available = self.bind("getAvailableName", text, number)
        self.count_aliases = self.bind("countAliases", ctypes.c_uint16, text, ctypes.c_void_p)
        self.alias = self.bind("getAlias", text, text, ctypes.c_uint16, ctypes.c_void_p)
        self.standard_name = self.bind("getStandardName", text, text, text, ctypes.c_void_p)
        self.canonical_name = self.bind("getCanonicalName", text, text, text, ctypes.c_void_p)
        self.open = self.bind("open", ctypes.c_void_p, text, ctypes.c_void_p)
        self.open_ccsid = self.bind("openCCSID", ctypes.c_void_p, number, number, ctypes.c_void_p)
        self.close = self.bind("close", None, ctypes.c_void_p)
        self.ccsid = self.bind("getCCSID", number, ctypes.c_void_p, ctypes.c_void_p)
        self.name = self.bind("getName", text, ctypes.c_void_p, ctypes.c_void_p)
        # The names that ICU makes of a CCSID begin with the maker's.
        self.maker = self.opened(self.open_ccsid(37, 0, self.status()))[0].split("-")[0].lower()

    def bind(self, name, result, *arguments):
        function = getattr(self.library, f"ucnv_{name}{self.suffix}")
        function.restype, function.argtypes = result, arguments
        return function

    @staticmethod
    def status():
        return ctypes.byref(ctypes.c_int(0))

    def opened(self, converter):
        """Returns the name and the CCSID of a converter, and closes it."""
        if not converter:
            return None, 0
        result = self.name(converter, self.status()).decode(), self.ccsid(converter, self.status())
        self.close(converter)
        return result

    def converters(self):
        return [self.available(i).decode() for i in range(self.count())]

    def opened_by(self, name):
        """Returns the name and the CCSID of the converter that a name opens."""
        return self.opened(self.open(name.encode(), self.status()))

    def names(self, converter):
        """Returns the names of a converter, those of the standards first."""
        text = converter.encode()
        preferred = [self.standard_name(text, standard, self.status()) for standard in (b"MIME", b"IANA")]
        preferred = [name.decode() for name in preferred if name]
        aliases = [self.alias(text, i, self.status()) for i in range(self.count_aliases(text, self.status()))]
        return preferred + [name for name in map(bytes.decode, aliases) if self.owner(name) == converter]

    def owner(self, name):
        """Returns the converter that IANA means by a name; if IANA does not have the name, the one that it opens."""
        owner = self.canonical_name(name.encode(), b"IANA", self.status())
        return owner.decode() if owner else self.opened_by(name)[0]

    def ccsid_of(self, converter, names):
        for name in names:
            if name in ASSIGNED:
                return ASSIGNED[name]
        number = self.opened_by(converter)[1]
        return number if self.opened(self.open_ccsid(number, 0, self.status()))[0] == converter else 0


def usable(names, maker):
    """Returns the names, in the usual spelling and each once, that are neither the maker's nor numbers."""
    found = {}
    for name in names:
        if maker not in name.lower() and not name.isdigit() and not OMITTED_NAMES.search(name):
            found.setdefault(key(name), re.sub(r"^cp(?=\d+$)", "CP", name))
    return found


def ordered(found, ccsid, standard):
    """Returns the spellings of names: the standard's first, then that with the number, then the others."""
    order = {key(standard): 0, f"cp{ccsid}": 1}
    return sorted(found.values(), key=lambda name: order.get(key(name), 2))


def read(path):
    with path.open(newline="", encoding="ascii") as file:
        return list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))


def rows_of(icu, own_ccsids):
    """Returns a row for the names of a CCSID that open the same converter; the names of the library's own table last."""
    rows, known = {}, set()
    converters = [(converter, icu.names(converter)) for converter in icu.converters()]
    for converter, names in converters:
        ccsid = icu.ccsid_of(converter, names)
        if not ccsid or OMITTED_CONVERTERS.search(converter):
            continue
        for name in ordered(usable(names, icu.maker), ccsid, names[0]):
            if key(name) not in known:
                known.add(key(name))
                rows.setdefault((ccsid, icu.opened_by(name)[0]), []).append(name)
    for row in own_ccsids:
        if re.search("[A-Z]", row["name"]) and key(row["name"]) not in known:
            known.add(key(row["name"]))
            rows[int(row["ccsid"]), ""] = [row["name"]]
    return [{"ccsid": ccsid, "names": " ".join(names)} for (ccsid, _), names in sorted(rows.items(), key=order_of)]


def order_of(item):
    """Orders rows by CCSID; among those of one, the row with the most names, which has the preferred one, is first."""
    (ccsid, _), names = item
    return ccsid, -len(names)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--icu", required=True)
    parser.add_argument("--ccsids", required=True, type=pathlib.Path)
    parser.add_argument("--out", required=True, type=pathlib.Path)
    options = parser.parse_args()
    old = {row["names"].split()[0]: row for row in read(options.out)} if options.out.exists() else {}
    with options.out.open("w", newline="", encoding="ascii") as file:
        writer = csv.DictWriter(file, COLUMNS, delimiter="\t", quoting=csv.QUOTE_NONE, lineterminator="\n")
        writer.writeheader()
        for row in rows_of(Icu(options.icu), read(options.ccsids)):
            kept = old.get(row["names"].split()[0], {})
            writer.writerow({**row, **{column: kept.get(column, "") for column in COLUMNS[2:]}})


main()
