"""Reads the texts of any program, for its manual page and its completions. A program that calls
VelClConsoleUI::useConventions prints them itself when the environment variable VEL_CONSOLEUI_DESCRIBE is set; for other
programs they are in a file. The form is the same, and the lines of usage and help are indented by a blank:

    Name: greet
    Title: Greeter
    Version: 1.0
    Usage:
     [(-name <name>)]
    Help:
     -name <name>  whom to greet
"""
import os
import subprocess
import sys

from tool_texts import Texts

BLOCKS = {"Usage", "Help"}
LINES = {"Name", "Title", "Description", "Version", "Conventions"}
TIME_LIMIT_SECONDS = 60


def parsed(text, origin):
    fields, block = {}, None
    for line in text.replace("\r\n", "\n").removesuffix("\n").split("\n"):
        name, colon, value = line.partition(":")
        if block and (line.startswith(" ") or not line):
            fields[block].append(line[1:])
        elif colon and name in BLOCKS and not value.strip():
            block = name
            fields[name] = []
        elif colon and name in LINES:
            block = None
            fields[name] = value.strip()
        else:
            sys.exit(f"{origin}: this is not the description of a program: {line}")
    if not fields.get("Name") or "Usage" not in fields:
        sys.exit(f"{origin}: a description needs Name and Usage")
    return fields


def described_texts(text, origin):
    fields = parsed(text, origin)
    name, version = fields["Name"], fields.get("Version", "")
    words = fields.get("Conventions", "").split()
    return Texts(name, fields.get("Title", ""), fields.get("Description", ""), "\n".join(fields["Usage"]),
                 "\n".join(fields.get("Help", [])).strip("\n"), conventions=bool(words), version=version,
                 package=f"{name} {version}".strip(), manual="", standard_switches=standard_switches(words, version))


def standard_switches(words, version):
    """Returns the switches that useConventions adds, or those that every VelClConsoleUI has."""
    switches = {"-h": "show usage and help, with exit code 201", "-quiet": "show no informational messages",
                "-copyright": "show the copyright"}
    if words:
        switches["--help"] = "print the help text"
        if version:
            switches["--version"] = "print the version"
    if "colors" in words:
        switches["-color <auto|always|never>"] = "when to colour messages"
    return switches


def texts_of_program(command):
    environment = dict(os.environ, VEL_CONSOLEUI_DESCRIBE="1")
    try:
        answer = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True,
                                timeout=TIME_LIMIT_SECONDS, encoding="utf-8").stdout
    except (OSError, subprocess.SubprocessError, UnicodeDecodeError) as error:
        sys.exit(f"{command[-1]} does not describe itself ({error}); give its texts in a file")
    return described_texts(answer, command[-1])
