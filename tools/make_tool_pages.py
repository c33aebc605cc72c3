#!/usr/bin/env python3
"""Generates the manual page of a program and its completions from its usage string and help text.

    make_tool_pages.py SOURCE [--name NAME] [--man FILE] [--bash FILE] [--zsh FILE] [--fish FILE] [--powershell FILE]
                       [--sections FILE] [--value LINE]... [--check COMMAND...] [--program COMMAND...]

SOURCE is --tool NAME --version VERSION for a tool of this library, --texts FILE, or --program COMMAND for a program
that describes itself. See page_sections.py for the file of further sections of the manual page, and
completions.py for the lines of values. --check fails unless the tool answers the same, and its exit codes
are in the section EXIT STATUS.
"""
import argparse
import pathlib
import re
import subprocess
import sys

from completions import SHELLS, completion, read_values
from page_sections import paragraphs, read_sections, section_page, terms
from program_texts import described_texts, texts_of_program
from tool_texts import help_options, help_parts, tool_texts

def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    text = re.sub(r"[^\x00-\x7F]", lambda match: f"\\[u{ord(match[0]):04X}]", text)
    return re.sub(r"^\.", r"\\&.", text, flags=re.MULTILINE)


def table(lines):
    return [".PP", roff(lines[0]), ".PP", ".nf", *map(roff, lines[1:]), ".fi"]


def man_page(texts, version, sections):
    package = texts.package or f"qamc5032 {version}"
    page = [f'.TH {roff(texts.name.upper())} 1 "" "{package}" "{texts.manual}"',
            ".SH NAME", f"{texts.name} \\- {roff(texts.title)}",
            ".SH SYNOPSIS", ".nf", f".B {texts.name}", *map(roff, texts.shown_usage()), ".fi"]
    if texts.description:
        page += [".SH DESCRIPTION", roff(texts.description[0].upper() + texts.description[1:] + ".")]
    page.append(".SH OPTIONS")
    for term, text in help_options(texts.help) + [list(pair) for pair in texts.standard_switches.items()]:
        page += [".TP", f"\\fB{roff(term)}\\fR", roff(text)]
    notes, exit_codes = [], ""
    for lines in help_parts(texts.help)[1:]:
        if any("  " in line for line in lines):
            notes += table(lines)
            continue
        text, _, codes = " ".join(lines).partition("Exit codes: ")
        exit_codes = codes or exit_codes
        notes += [".PP", roff(text.strip())] if text.strip() else []
    if notes:
        page += [".SH NOTES", *notes]
    if exit_codes and "EXIT STATUS" not in sections:
        page += [".SH EXIT STATUS", roff(exit_codes[0].upper() + exit_codes[1:])]
    for heading, lines in sections.items():
        page += [f".SH {heading}", *section_page(lines, roff)]
    return "\n".join(page) + "\n"


def exit_codes_of(text):
    """Returns the exit codes that a text names after "Exit codes: ", as pairs of the first and the last."""
    codes = re.findall(r"(?:^|,)\s+(\d+)(?:\s+to\s+(\d+))?\s", text.partition("Exit codes:")[2])
    return [(int(first), int(last or first)) for first, last in codes]


def check_exit_codes(texts, lines):
    """Fails unless a section has the exit codes of the help text; not all of a range need to exist."""
    ranges = exit_codes_of(texts.help)
    listed = {int(term) for paragraph in paragraphs(lines) for term, _ in terms(paragraph)}
    missing = {first for first, last in ranges if not any(first <= code <= last for code in listed)}
    unknown = {code for code in listed if not any(first <= code <= last for first, last in ranges)}
    if ranges and (missing or unknown):
        sys.exit(f"{texts.name}: the section EXIT STATUS lacks {sorted(missing)}; the help lacks {sorted(unknown)}")


def check(texts, version, command):
    heading = f"Usage: {texts.name} "
    usage = ("\n" + " " * len(heading)).join(texts.shown_usage(tagged=True))
    help_text = re.sub(r"^@.*", "", texts.help, flags=re.MULTILINE)
    expected = {"--help": f"{texts.name} - {texts.title}\n\n{heading}{usage}\n\n{help_text}\n",
                "--version": "{} VELLibR{}-{}\n".format(texts.name, *version.split("."))}
    for switch, text in expected.items():
        answer = subprocess.run([*command, switch], check=True, capture_output=True, text=True).stdout
        if answer != text:
            sys.exit(f"{texts.name} {switch} answers\n{answer}\nand not, as read from its sources,\n{text}")


def parsed_arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool")
    parser.add_argument("--version", default="")
    parser.add_argument("--texts", type=pathlib.Path)
    parser.add_argument("--name")
    parser.add_argument("--sections", type=pathlib.Path)
    parser.add_argument("--value", action="append", default=[])
    for kind in ["man", *SHELLS]:
        parser.add_argument(f"--{kind}", type=pathlib.Path)
    parser.add_argument("--check", nargs=argparse.REMAINDER)
    parser.add_argument("--program", nargs=argparse.REMAINDER)
    return parser.parse_args()


def texts_of(arguments):
    if arguments.tool:
        return tool_texts(arguments.tool)
    if arguments.texts:
        return described_texts(arguments.texts.read_text(encoding="utf-8"), arguments.texts.name)
    return texts_of_program(arguments.program)


def main():
    arguments = parsed_arguments()
    texts = texts_of(arguments)
    texts.name = arguments.name or texts.name
    sections = read_sections(arguments.sections) if arguments.sections else {}
    if arguments.check:
        check_exit_codes(texts, sections.get("EXIT STATUS", []))
        check(texts, arguments.version, arguments.check)
    values = read_values(arguments.value)
    pages = {arguments.man: lambda: man_page(texts, arguments.version, sections)}
    pages |= {getattr(arguments, shell): lambda shell=shell: completion(shell, texts, values) for shell in SHELLS}
    for path, make in pages.items():
        if path:
            path.write_text(make(), encoding="utf-8", newline="\n")


main()
