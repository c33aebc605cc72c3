"""Replaces the directives in the pages of the manual, so that a page does not repeat a fact that is stated elsewhere:

  {{source FILE}}              the text of a source file
  {{definition FILE: WORDS}}   the definition in a source file whose first line contains these words
  {{output SESSION: COMMAND}}  this command of a session file, its input, and the lines that it prints
  {{stated HEADER: WORDS}}     the number in these words, which must be in a comment of that header
  {{value HEADER: NAME}}       the value of a constant
  {{count FILE}}               the number of rows of a data file
  {{tool NAME}}                the title, usage string and help text of a tool
  {{code-pages}}, {{code-page-names}}, {{code-page-differences}}, {{errors}}, {{status-errors}}, {{classes}}, {{icu-errors}},
  {{trace-types}}              tables of the data files
  {{rooms}}                    the table of rooms and their dependencies, from the build files
  {{ratios}}                   the table of ratios that a whole run of the benchmarks wrote
  {{machine}}                  the machine and the versions of the peers, which the run wrote, too"""
import csv
import pathlib
import re
import sys
import textwrap

for folder in ("tools", "bench"):
    sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / folder))
import machine
from tool_texts import tool_texts

FLAGS = {0x01: "ASCII-based", 0x02: "EBCDIC-based", 0x04: "double-byte", 0x08: "single-byte", 0x40: "UCS-2"}


def rows_of(path):
    with open(path, newline="", encoding="utf-8") as file:
        return list(csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE))


def kind_of(row):
    """Describes a row of the table of CCSIDs."""
    words = [word for flag, word in FLAGS.items() if int(row["flags"], 16) & flag]
    if "UCS-2" not in words and not {"double-byte", "single-byte"} & set(words):
        words.append("single and more bytes" if words else "neither of these")
    if row["name"] not in (row["ccsid"], "???"):
        words.append("named " + row["name"])
    return ", ".join(words)


def table(titles, rows):
    lines = ["| " + " | ".join(titles) + " |", "|" + "---|" * len(titles)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines)


class Page:
    def __init__(self, path, root):
        self.path, self.root = path, root

    def stop(self, message):
        sys.exit(f"{self.path.name}: {message}")

    def fill(self, match):
        name, argument = match[1], (match[2] or "").strip()
        return getattr(self, name.replace("-", "_"))(argument)

    def expanded(self):
        text = self.linked(self.path.read_text(encoding="utf-8"))
        self.check_names(re.sub(r"\{\{[^}]*\}\}", "", text))
        return re.sub(r"\{\{([a-z-]+)(?: ([^}]*))?\}\}", self.fill, text)

    def linked(self, text):
        """Links plain functions, which Doxygen does only if "()" follows their names; code and headings stay as they are."""
        functions = set(re.findall(r"\b(vel[A-Z]\w*)\(", "".join(
            path.read_text(encoding="utf-8") for path in (self.root / "vel_include").glob("*.h"))))
        fixed = r"^```.*?^```|^    +.*?$|`[^`\n]*`|^#[^\n]*|\{\{.*?\}\}|@\w+ \S+(?: \"[^\"]*\")?"
        return re.sub(fixed + r"|(?<![\w:])(vel[A-Z]\w*)(?![\w(:])",
                      lambda m: f"@ref {m[1]}" if m[1] in functions else m[0], text, flags=re.M | re.S)

    def check_names(self, text):
        """Stops at a name that no header and no option has: Doxygen links the names that it knows and does not report others."""
        files = [*(self.root / "vel_include").glob("*.h"), self.root / "CMakeLists.txt"]
        headers = "".join(path.read_text(encoding="utf-8") for path in files)
        known = set(re.findall(r"\w+", headers))
        for name in re.findall(r"\b_?(?:Vel|vel)[A-Z][\w:]*\w\b(?!\.\.\.)|\bVEL_[A-Z_]+\b", text):
            for part in re.split("::", name):
                if part not in known:
                    self.stop(f"no header has the name {name}")

    def source(self, name):
        text = (self.root / name).read_text(encoding="utf-8")
        language = {".cpp": "cpp", ".c": "c"}.get(pathlib.Path(name).suffix, "unparsed")
        return f"```{{.{language}}}\n{text.rstrip()}\n```"

    def definition(self, argument):
        """Shows a definition with its comment, up to the line that closes it, or to the end of its statement."""
        name, words = (part.strip() for part in argument.split(":", 1))
        lines = (self.root / name).read_text(encoding="utf-8").split("\n")
        starts = [i for i, line in enumerate(lines) if words in line and "//" not in line]
        if len(starts) != 1:
            self.stop(f"{len(starts)} lines with '{words}' in {name}")
        first = last = starts[0]
        indent = re.match(r"\s*", lines[first])[0]
        while not re.match(rf"{indent}\S.*[;}}]$|{indent}}}", lines[last]):
            last += 1
        while re.match(r"\s*//", lines[first - 1]):
            first -= 1
        return "```{.cpp}\n" + textwrap.dedent("\n".join(lines[first:last + 1])) + "\n```"

    def output(self, argument):
        """A command that reads its input is shown with a here-document, as a shell would get it."""
        session, command = (part.strip() for part in argument.split(":", 1))
        lines = (self.root / session).read_text(encoding="utf-8").split("\n")
        starts = [i for i, line in enumerate(lines) if line == "$ " + command]
        if len(starts) != 1:
            self.stop(f"{len(starts)} runs of '{command}' in {session}")
        typed, printed = [], []
        for line in lines[starts[0] + 1:]:
            if not re.match(r"[<>!](?: |$)", line):
                break
            # A single backslash at the end leaves out the line break.
            text = re.sub(r"(?<!\\)\\$", "", line[2:]).replace("\\\\", "\\").replace("\\t", "\t")
            (typed if line[0] == "<" else printed).append(text)
        if not printed:
            self.stop(f"'{command}' prints nothing in {session}")
        shown = "$ " + command.replace("@/", "").replace("%/", "")
        if typed:
            shown = "\n".join([shown + " <<END", *typed, "END"])
        return "```\n" + "\n".join([shown, *printed]) + "\n```"

    def header(self, name):
        return (self.root / "vel_include" / name).read_text(encoding="utf-8")

    def stated(self, argument):
        name, words = (part.strip() for part in argument.split(":", 1))
        comments = " ".join(re.sub(r"[\s/<|]+", " ", self.header(name)).split())
        if words not in comments:
            self.stop(f"'{words}' is not in the comments of {name}")
        return re.search(r"\d[\d,]*", words)[0]

    def value(self, argument):
        name, constant = (part.strip() for part in argument.split(":", 1))
        found = re.search(rf"\b{constant}(?: =)? (\d+)", self.header(name))
        if not found:
            self.stop(f"{name} has no constant {constant}")
        return f"{int(found[1]):,}"

    def count(self, name):
        return f"{len(rows_of(self.root / name)):,}"

    def tool(self, name):
        texts = tool_texts(name)
        usage = ("\n" + " " * (len(name) + 1)).join(texts.shown_usage())
        help_text = re.sub(r"^@.*", "", texts.help, flags=re.MULTILINE)
        title = texts.title + (f": {texts.description}" if texts.description else "")
        return f"{title}.\n\n```{{.unparsed}}\n{name} {usage}\n\n{help_text}\n```"

    def code_pages(self, _):
        kinds = {int(row["ccsid"]): kind_of(row) for row in rows_of(self.root / "codepage/ccsids.tsv")}
        rows = []
        for path in sorted((self.root / "codepage/mappings").glob("*.txt"), key=lambda path: int(path.stem)):
            head = path.read_text(encoding="utf-8").split("\n[", 1)[0]
            facts = dict(line.split("\t", 1) for line in head.split("\n") if "\t" in line)
            least, most = facts["min-bytes"], facts["max-bytes"]
            rows.append((path.stem, kinds[int(path.stem)], least if least == most else f"{least} or {most}",
                         "yes" if facts["shift"].startswith("yes") else "", facts["edition"]))
        return table(("CCSID", "Kind", "Bytes a character", "Shifts", "Edition"), rows)

    def code_page_names(self, _):
        rows, names = {}, rows_of(self.root / "codepage/ccsid_names.tsv")
        for row in names:
            rows[row["ccsid"]] = [*rows.get(row["ccsid"], []), *(f"`{name}`" for name in row["names"].split())]
        return table(("CCSID", "Names"), [(ccsid, ", ".join(found)) for ccsid, found in rows.items()])

    def code_page_differences(self, _):
        return table(("Name", "CCSID", "Bytes that differ", "Why"),
                     [(f"`{row['names'].split()[0]}`", row["ccsid"], row["differences"], row["why"])
                      for row in rows_of(self.root / "codepage/ccsid_names.tsv") if row["differences"]])

    def errors(self, _):
        comments = dict(re.findall(r"(\w+) = \d+,?\s+///< (.*)", self.header("vel_error.h")))
        rows = [row for row in rows_of(self.root / "foundation/errors.tsv") if row["kind"] == "identifier"]
        return table(("Identifier", "Number", "Message", "Means"),
                     [(f"`{row['name']}`", row["value"], row["message_id"], comments[row["name"]]) for row in rows])

    def status_errors(self, _):
        comments = dict(re.findall(r"(\w+) = \d+,?\s+///< (.*)", self.header("vel_status.h")))
        return table(("Identifier", "Number", "Means"),
                     [(f"`{row['name']}`", row["value"], comments[row["name"]])
                      for row in rows_of(self.root / "foundation/status_errors.tsv")])

    def classes(self, _):
        rows = [row for row in rows_of(self.root / "foundation/errors.tsv") if row["kind"] != "identifier"]
        return table(("Enumeration", "Name", "Number", "Message"),
                     [(row["kind"], f"`{row['name']}`", row["value"], row["message_id"]) for row in rows])

    def icu_errors(self, _):
        return table(("Status of ICU", "Number", "Identifier", "Class", "Severity", "Action"),
                     [(f"`{row['icu_status']}`", row["value"], f"`{row['error_identifier']}`", row["class"],
                       row["severity"], row["action"]) for row in rows_of(self.root / "codepage/icu_errors.tsv")])

    def ratios(self, _):
        return table(("Job", "Peer", "Own time / peer's", "Goal", "Own time / physical limit", ""),
                     [row.values() for row in rows_of(self.root / "docs/manual/ratios.tsv")])

    def machine(self, _):
        """Says so if the description does not belong to the ratios."""
        ratios = [(row["job"], row["peer"], row["ratio"]) for row in rows_of(self.root / "docs/manual/ratios.tsv")]
        (_, digest), *rows = ((row["what"], row["version"]) for row in rows_of(self.root / "docs/manual/machine.tsv"))
        same = "The figures below were measured with:"
        other = "The figures below are from an earlier run. The machine and the versions were recorded later:"
        return (same if digest == machine.digest(ratios) else other) + "\n\n" + table(("What", "Version"), rows)

    def rooms(self, _):
        rows = []
        for room in re.findall(r"^add_subdirectory\((\w+)\)", (self.root / "CMakeLists.txt").read_text(), re.M):
            text = (self.root / room / "CMakeLists.txt").read_text()
            if (found := re.search(r"^vel_add_room\((.*?)\bSOURCES\b", text, re.M | re.S)) is None:
                continue
            public, uses = (re.search(rf"\b{word} ([\w. ]+)", found[1]) for word in ("PUBLIC", "USES"))
            rows.append((f"`{room}/`", uses[1] if uses else "", public[1] if public else ""))
        return table(("Room", "Uses", "Public headers"), rows)

    def trace_types(self, _):
        return table(("Number", "Short name (%%x)", "Long name (%%X)"),
                     [(row["value"], row["short_name"], row["long_name"])
                      for row in rows_of(self.root / "trace/trace_types.tsv")])


def expanded(path, root):
    return Page(path, root).expanded()
