"""Reads the title, the usage string and the help text of a tool: from its texts.h, or from the library's message table
if texts.h contains only message numbers."""
import ast
import pathlib
import re
import sys
from dataclasses import dataclass, field

ROOT = pathlib.Path(__file__).resolve().parent.parent
TOKEN = re.compile(r'//[^\n]*|"(?:\\.|[^"\\])*"|\w+|\S')
ELEMENT = re.compile(r'"[^"]*"|-(?!\d)[^][<>(){}|=\s"]+|<[^>]*>|[()]')
# Not in any usage string: tools/standard_switches.cpp answers them for every tool.
STANDARD_SWITCHES = {"--help": "print the help text", "--version": "print the version of the library"}


@dataclass
class Usage:
    """The switches of a usage string, each with the name of its value or None, and its free arguments."""
    switches: dict = field(default_factory=dict)
    free: list = field(default_factory=list)


@dataclass
class Texts:
    name: str
    title: str
    description: str
    usage: str
    help: str
    conventions: bool = False  # whether the program calls useConventions
    version: str = ""
    package: str = ""  # the last line of the manual page: package and version, and the name of the manual
    manual: str = "qamc5032"
    standard_switches: dict = field(default_factory=lambda: dict(STANDARD_SWITCHES))

    def shown_usage(self, tagged=False):
        """Returns the usage as the library shows it, with or without tagged lines."""
        return [re.sub(r'[()"!]', "", line) for line in self.usage.split("\n") if tagged or "!" not in line]


def help_parts(help_text):
    """Returns the lines of each part of a help text; lines that begin with "@" separate the parts."""
    return [part.strip("\n").split("\n") for part in re.split(r"^@[^\n]*$", help_text, flags=re.MULTILINE)]


def help_options(help_text):
    """Returns each option of the first part as a pair: the text before two blanks, and the text after them."""
    found = []
    for line in help_parts(help_text)[0]:
        term, _, text = line.partition("  ")
        if term:
            found.append([term, text.strip()])
        elif found:
            found[-1][1] += " " + text.strip()
    return found


def parse_usage(usage):
    result, depth, switch = Usage(), 0, None
    for element in ELEMENT.findall("\n".join(line for line in usage.split("\n") if "!" not in line)):
        if element in "()":
            depth += 1 if element == "(" else -1
            switch = None
        elif element.startswith("-"):
            switch = element if depth else None
            result.switches[element] = None
        elif element.startswith("<") and switch:
            result.switches[switch] = result.switches[switch] or element[1:-1]
        elif element.startswith("<") and not depth:
            result.free.append(element[1:-1])
    return result


def string_of(tokens, constants):
    """Returns the string that adjacent literals and names of constants form."""
    return "".join(ast.literal_eval(t) if t.startswith('"') else constants[t] for t in tokens)


def header_texts(path):
    """Returns the numbers of the enumerators by name, and the strings of constants and entries by name or index."""
    tokens = [t for t in TOKEN.findall(path.read_text(encoding="utf-8")) if not t.startswith("//")]
    numbers, constants, following = {}, {}, 0
    start = tokens.index("{", tokens.index("enum"))
    for entry in " ".join(tokens[start + 1:tokens.index("}", start)]).split(","):
        name, _, value = (part.strip() for part in entry.partition("="))
        following = int(value) if value else following
        numbers[name] = following
        following += 1
    for at in [i for i, t in enumerate(tokens) if t == "constexpr"]:
        end = tokens.index(";", at)
        equals = tokens.index("=", at)
        if "[" not in tokens[at:equals]:
            constants[tokens[equals - 1]] = string_of(tokens[equals + 1:end], constants)
            continue
        entry, index = [], 0
        for token in tokens[equals + 2:end]:
            if token in ",}":
                if entry:
                    constants[index] = string_of(entry, constants)
                entry, index = [], index + 1
            else:
                entry.append(token)
    return numbers, constants


def table_texts():
    sys.path.insert(0, str(ROOT / "messages"))
    sys.dont_write_bytecode = True
    from generate_messages import read_table
    return [english.replace("%%", "%") for english, _ in read_table(ROOT / "messages/messages.tsv")]


def tool_texts(name):
    numbers, texts = header_texts(ROOT / "tools" / name / "texts.h")
    if not texts:
        texts = dict(enumerate(table_texts()))
    title, usage, help_text = (texts[numbers[key]] for key in ("kTitle", "kUsage", "kHelp"))
    return Texts(name, title, texts[numbers["kDescription"]] if "kDescription" in numbers else "", usage, help_text)
