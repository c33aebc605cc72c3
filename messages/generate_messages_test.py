#!/usr/bin/env python3
"""Tests that the generator rejects every kind of invalid message table."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TABLE = (HERE / "messages.tsv").read_text(encoding="utf-8")


def generate(table):
    """Returns (exit code, error text, {file name: content})."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "t.tsv").write_text(table, encoding="utf-8", newline="\n")
        command = [sys.executable, HERE / "generate_messages.py"]
        for option, file in (("--table", "t.tsv"), ("--inc", "t.inc"), ("--mc", "t.mc")):
            command += [option, folder / file]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        made = {f.name: f.read_bytes() for f in folder.iterdir() if f.name != "t.tsv"}
        return done.returncode, done.stderr, made


class GenerateMessages(unittest.TestCase):
    def test_is_deterministic(self):
        first, second = generate(TABLE), generate(TABLE)
        self.assertEqual(first[0], 0, first[1])
        self.assertEqual(sorted(first[2]), ["t.inc", "t.mc"])
        self.assertEqual(first, second)

    def test_escapes_and_empty_texts(self):
        table = TABLE.replace("7\tmax.\tmax.", '7\t\\ta"\\\\n\\n\t\\tb%%\\n').replace("6\tmin.\tmin.", "6\t\t")
        code, error, made = generate(table)
        self.assertEqual(code, 0, error)
        self.assertIn(b'\n"\\ta\\"\\\\n\\n",  // 7\n', made["t.inc"])
        self.assertIn(b"\n\ta\"\\n\n%0\n.\n", made["t.mc"])
        self.assertIn(b"MessageId=6\nSeverity=PlainSeverity\nFacility=PlainFacility\n"
                      b"Language=TableEnglish\n %0\n.\nLanguage=TableGerman\n %0\n.\n", made["t.mc"])

    def test_broken_tables_stop_it(self):
        rows = [
            ("7\tmax.", "8\tmax.", "message 7: id '8'"),
            (TABLE.splitlines(keepends=True)[-1], "", "message 0: is not"),
            ("SIGNATURE] ", "SIGNATURE] 9", "message 0: is not"),
            ("7\tmax.\tmax.", "7\tmax.", "message 7: 2 columns"),
            ("7\tmax.\tmax.", "7\tmax. %1\tmax.", "message 7: the languages differ in their inserts"),
            ("7\tmax.\tmax.", "7\tmax.\tmax. ", "message 7: the languages differ in outer blanks"),
            ("7\tmax.\tmax.", "7\ta\\n.\\nb\tmax.", "message 7: a line that is a single dot"),
            ("7\tmax.\tmax.", "7\tm\u00e4x.\tmax.", "message 7: the English text is not ASCII"),
            ("7\tmax.\tmax.", "7\tmax.\tmax\u03b1", "message 7: German is not cp1252"),
            ("7\tmax.\tmax.", "7\ta\\x\tmax.", "message 7: unknown escape"),
            ("7\tmax.\tmax.", "7\t50%\t50%", "message 7: '%' is neither"),
            ("7\tmax.\tmax.", "7\t%11\t%11", "message 7: '%11' is neither"),
            ("7\tmax.\tmax.", "7\t%01\t%01", "message 7: '%01' is neither"),
            ("7\tmax.\tmax.", "7\t%n\t%n", "message 7: '%' is neither"),
            ("7\tmax.\tmax.", "7\t%1!s!\t%1!s!", "message 7: an insert is followed by '!'"),
            ("7\tmax.\tmax.", "7\ta\x07\tmax.", "message 7: control character"),
        ]
        for old, new, problem in rows:
            with self.subTest(problem):
                self.assertIn(old, TABLE)
                code, error, made = generate(TABLE.replace(old, new, 1))
                self.assertNotEqual(code, 0)
                self.assertIn(problem, error)
                self.assertEqual(made, {})


if __name__ == "__main__":
    unittest.main()
