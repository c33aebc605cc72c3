#!/usr/bin/env python3
"""Generates the manual page of a tool and its completion for bash from the tool's usage string and help text.

    make_tool_pages.py --tool NAME --version VERSION --man FILE --completion FILE
    make_tool_pages.py --tool NAME --version VERSION --check COMMAND...   fails unless the tool answers the same
"""
import argparse
import pathlib
import re
import subprocess
import sys

from tool_texts import STANDARD_SWITCHES, parse_usage, tool_texts

FILE_VALUES = {"file", "filename", "directory", "path"}
COMPLETION = """\
# Completion for the command line of {name}, generated from its usage string.
_{name}() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} names=
  COMPREPLY=()
  case $previous in
    {file_switches}) names=files ;;
    {value_switches}) return ;;
  esac
  if [ -z "$names" ] && [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '{switches}' -- "$current")
  elif [ "${{names:-{otherwise}}}" = files ]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}}
complete -F _{name} {name}
"""


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("'", "\\(aq").replace("`", "\\(ga")
    return re.sub(r"^\.", r"\\&.", text, flags=re.MULTILINE)


def options(lines):
    """Returns each option of the help text as a pair: the text before two blanks, and the text after them."""
    found = []
    for line in lines:
        term, _, text = line.partition("  ")
        if term:
            found.append([term, text.strip()])
        else:
            found[-1][1] += " " + text.strip()
    return found + [list(pair) for pair in STANDARD_SWITCHES.items()]


def table(lines):
    return [".PP", roff(lines[0]), ".PP", ".nf", *map(roff, lines[1:]), ".fi"]


def man_page(texts, version):
    parts = [part.strip("\n").split("\n") for part in re.split(r"^@[^\n]*$", texts.help, flags=re.MULTILINE)]
    page = [f'.TH {texts.name.upper()} 1 "" "qamc5032 {version}" "qamc5032"',
            ".SH NAME", f"{texts.name} \\- {roff(texts.title)}",
            ".SH SYNOPSIS", ".nf", f".B {texts.name}", *map(roff, texts.shown_usage()), ".fi"]
    if texts.description:
        page += [".SH DESCRIPTION", roff(texts.description[0].upper() + texts.description[1:] + ".")]
    page.append(".SH OPTIONS")
    for term, text in options(parts[0]):
        page += [".TP", f"\\fB{roff(term)}\\fR", roff(text)]
    page.append(".SH NOTES")
    exit_codes = ""
    for lines in parts[1:]:
        if any("  " in line for line in lines):
            page += table(lines)
            continue
        text, _, codes = " ".join(lines).partition("Exit codes: ")
        exit_codes = codes or exit_codes
        page += [".PP", roff(text.strip())]
    if exit_codes:
        page += [".SH EXIT STATUS", roff(exit_codes[0].upper() + exit_codes[1:])]
    return "\n".join(page) + "\n"


def completion(texts):
    usage = parse_usage(texts.usage)
    files = [name for name, value in usage.switches.items() if value in FILE_VALUES]
    values = [name for name, value in usage.switches.items() if value and value not in FILE_VALUES]
    return COMPLETION.format(
        name=texts.name, file_switches="|".join(files or ["''"]), value_switches="|".join(values or ["''"]),
        switches=" ".join([*usage.switches, *STANDARD_SWITCHES]),
        otherwise="files" if FILE_VALUES & set(usage.free) else "nothing")


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


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--man", type=pathlib.Path)
    parser.add_argument("--completion", type=pathlib.Path)
    parser.add_argument("--check", nargs=argparse.REMAINDER)
    arguments = parser.parse_args()
    texts = tool_texts(arguments.tool)
    if arguments.check:
        check(texts, arguments.version, arguments.check)
    else:
        arguments.man.write_text(man_page(texts, arguments.version), encoding="utf-8", newline="\n")
        arguments.completion.write_text(completion(texts), encoding="utf-8", newline="\n")


main()
