"""Reads further sections of a manual page from a file: exit codes, examples, related pages.

    EXIT STATUS
    0    success
    201  the command line is wrong

    EXAMPLES
    Greet somebody twice:

        $ greet -name Ada -times 2

    SEE ALSO
    cat(1)

A line of capital letters begins a section. An empty line ends a paragraph, and indented lines are shown as they are. A
paragraph whose first line has two blanks after its first word is a list of terms and their meanings; a meaning continues
on indented lines. {{session FILE}} stands for the runs of a session file of the tests, see session.h: its comments, its
commands without the folders of the test, and what they print. FILE is relative to the file of the sections.
"""
import re
import sys

HEADING = re.compile(r"[A-Z][A-Z ]+")
TERM = re.compile(r"(\S+)  +(\S.*)")
PAGE = re.compile(r"\b([\w-]+)(\(\d\w*\))")
SESSION = re.compile(r"\{\{session ([^}]+)\}\}")
FOLDER = re.compile(r'[%@]/(?:[^\s"]*/)?')
INDENTATION = "    "


def shown_output(text):
    return FOLDER.sub("", text).replace("\\t", "\t").replace("\\\\", "\\")


def session_lines(path):
    """Returns the runs of a session as lines of a section. Only what a reader of the page can see is taken."""
    lines = []
    for line in path.read_text(encoding="utf-8").splitlines():
        sign, text = line[:2], line[2:]
        shown = {"# ": text, "$ ": INDENTATION + "$ " + FOLDER.sub("", text),
                 "> ": INDENTATION + shown_output(text)}.get(sign)
        if line.startswith(">>") or line.startswith("?"):
            sys.exit(f"{path}: an example must show its whole output: {line}")
        if shown is not None:
            lines += ["", shown, ""] if sign == "# " else [shown]
    return lines


def read_sections(path):
    """Returns the lines of each section by its heading, in order."""
    sections = {}
    current = None
    for line in path.read_text(encoding="utf-8").splitlines():
        if HEADING.fullmatch(line):
            current = sections.setdefault(line, [])
        elif current is not None:
            found = SESSION.fullmatch(line)
            current += session_lines(path.parent / found[1]) if found else [line]
        elif line.strip():
            sys.exit(f"{path}: a heading in capital letters is expected before: {line}")
    return sections


def paragraphs(lines):
    paragraph = []
    for line in [*lines, ""]:
        if line.strip():
            paragraph.append(line)
        elif paragraph:
            yield paragraph
            paragraph = []


def terms(paragraph):
    """Returns the list of terms that a paragraph is, or nothing if it is something else."""
    found = []
    for line in paragraph:
        match = TERM.fullmatch(line)
        if match:
            found.append([match[1], match[2]])
        elif found and line.startswith(" "):
            found[-1][1] += " " + line.strip()
        else:
            return []
    return found


def section_page(lines, roff):
    """Returns a section in the language of manual pages; `roff` escapes a text."""
    page = []
    for paragraph in paragraphs(lines):
        if all(line.startswith(INDENTATION) for line in paragraph):
            page += [".PP", ".RS 4", ".nf", *(roff(line.removeprefix(INDENTATION)) for line in paragraph), ".fi", ".RE"]
        elif listed := terms(paragraph):
            for term, text in listed:
                page += [".TP", f"\\fB{roff(term)}\\fR", roff(text)]
        else:
            page += [".PP", PAGE.sub(r"\\fB\1\\fR\2", roff(" ".join(map(str.strip, paragraph))))]
    return page
