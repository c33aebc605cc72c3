"""Converts the comments of the public headers for Doxygen. In the headers, a comment applies to all declarations below
it up to the next comment or empty line, its words are plain text except for @warning at the start of a line, and lines
that are indented by three blanks after an empty comment line are an example.

Doxygen copies the comment of an overridden function to its overrides. Destructors without a comment are left out of the
reference; copy operations without a comment are described as such."""
import re
import sys

DOC = re.compile(r"^(\s*)///(?!<) ?(.*)$")
SCOPE = re.compile(r"\b(class|struct|enum|namespace)\b[^;(]*(?:VEL_ENUM_TYPE\(\w+\) )?\{$")
NAMED_SCOPE = re.compile(r"\b(?:class|struct)\s+(?:VEL_API\s+)?(\w+)[^;()]*\{$")
NAMED_SCOPE_AT_START = re.compile(r"^(?:class|struct)\s+(?:VEL_API\s+)?(_?Vel\w+)[^;()]*?\{", re.M)
ENUMERATORS = re.compile(r"CCSID_(\d+) = \d+,")


def escaped(words):
    """Escapes plain text for Doxygen's Markdown; text between backquotes is not changed."""
    parts = re.split(r"(`[^`]*`)", words)
    return "".join(part if part.startswith("`") else
                   re.sub(r"([\\@<>#%&*~])", r"\\\1", part).replace('"', "&quot;") for part in parts)


def prose(words):
    if words.startswith("@warning "):
        return "@warning " + escaped(words.removeprefix("@warning "))
    item = re.match(r"(\s*- )(.*)", words)
    return item[1] + escaped(item[2]) if item else escaped(words)


def comment(lines):
    """Returns the lines of a comment with its examples marked as code."""
    result, example = [], []

    def close_example():
        if not example:
            return
        code = any(line.rstrip().endswith((";", ")", "...")) for line in example)
        begin, end = ("@code{.cpp}", "@endcode") if code else ("@code{.unparsed}", "@endcode")
        result.extend([begin, *(line[2:] for line in example), end])
        example.clear()

    for index, line in enumerate(lines):
        if line.startswith("  ") and (example or index == 0 or not lines[index - 1].strip()):
            example.append(line)
        elif not line.strip() and example and index + 1 < len(lines) and lines[index + 1].startswith("  "):
            example.append("")
        else:
            close_example()
            result.append(prose(line))
    close_example()
    return result


def code_of(line):
    """Returns the line without comments and literals, so that its brackets can be counted."""
    line = re.sub(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'', '""', line)
    return re.sub(r"//.*", "", line).rstrip()


def is_complete(statement, in_enum):
    text = "\n".join(code_of(line) for line in statement).strip()
    balance = sum(text.count(c) for c in "({[") - sum(text.count(c) for c in ")}]")
    if balance != 0:
        return False
    if in_enum:
        return text.endswith(",") or not text
    if "requires requires" in text and text.endswith("\n}"):
        return False
    return text.endswith((";", "}"))


def special_member(text, scope):
    """Returns the comment for a destructor or a copy operation that has none, or None for any other member."""
    if not scope:
        return None
    if re.search(rf"~{scope}\(\)", text):
        return ""
    if re.search(rf"\b{scope}\(const {scope}& ?\w*\)", text) or "operator=(const " + scope + "&" in text:
        return "Not copied." if "= delete" in text else "Copies."
    return None


class Header:
    def __init__(self, text, ccsid_words):
        self.lines = text.split("\n")
        self.ccsid_words = ccsid_words
        self.out = []
        self.scopes = []  # (kind, name)
        self.doc = None
        self.uses = 0

    def emit_doc(self, indent):
        self.out.extend(f"{indent}/// {line}".rstrip() for line in self.doc)

    def file_top(self):
        top = []
        while self.lines and self.lines[0].startswith("//"):
            top.append(self.lines.pop(0)[2:].removeprefix(" "))
        self.out.append("/// @file")
        self.out.extend(f"/// {line}".rstrip() for line in comment(top))
        self.out.append("")

    def ccsids(self, line):
        for number in ENUMERATORS.findall(line):
            self.out.append(f"/// {escaped(self.ccsid_words[int(number)])}")
            self.out.append(f"CCSID_{number} = {number},")

    def in_enum(self):
        return bool(self.scopes) and self.scopes[-1][0] == "enum"

    def statement(self, lines):
        text = " ".join(line.strip() for line in lines)
        indent = re.match(r"\s*", lines[0])[0]
        scope = self.scopes[-1][1] if self.scopes else ""
        own = "///<" in text
        words = special_member(text, scope)
        if self.doc is not None and not own and (self.uses == 0 or (words is None and " override" not in text)):
            self.emit_doc(indent)
        elif self.in_enum() and not own:
            sys.exit(f"an enumerator without a comment: {text}")
        elif not own and " override" not in text:
            if words == "":
                lines = [indent + "/// @cond", *lines, indent + "/// @endcond"]
            elif words:
                self.out.append(f"{indent}/// {words}")
        self.uses += 1
        self.out.extend(re.sub(r"///<\s?(.*)", lambda m: "///< " + escaped(m[1]), line) for line in lines)

    def convert(self):
        self.file_top()
        index = 0
        while index < len(self.lines):
            index = self.step(index)
        return "\n".join(self.out)

    def step(self, index):
        line = self.lines[index]
        stripped = line.strip()
        if DOC.match(line):
            block = []
            while DOC.match(self.lines[index]):
                block.append(DOC.match(self.lines[index])[2])
                index += 1
            self.doc, self.uses = comment(block), 0
            if not self.lines[index].strip():
                sys.exit(f"a comment without a declaration: {block[0]}")
            return index
        if ENUMERATORS.search(line) and line.count("CCSID_") > 1:
            self.ccsids(line)
            return index + 1
        if stripped.startswith("//"):
            return index + 1
        if not stripped or re.match(r"(public|protected|private):$", stripped):
            self.doc = None
            self.out.append(line)
            return index + 1
        if stripped.startswith("#"):
            if stripped.startswith("#define") and self.doc is not None:
                self.statement([line])
            else:
                self.doc = None
                # Doxygen would link to a list of macros that has no entry for one without a comment.
                self.out.append("" if re.match(r"#define \w+_ONLY$", stripped) else line)
            while self.lines[index].endswith("\\"):
                index += 1
                self.out.append(self.lines[index])
            return index + 1
        if re.match(r"\}", stripped) and self.scopes:
            self.scopes.pop()
            self.doc = None
            self.out.append(line)
            return index + 1
        return self.declaration(index)

    def declaration(self, index):
        in_enum = self.in_enum()
        lines = [self.lines[index]]
        while True:
            text = " ".join(code_of(line).strip() for line in lines)
            scope = SCOPE.search(text)
            if scope and not in_enum:
                self.statement(lines)
                name = NAMED_SCOPE.search(text)
                self.scopes.append((scope[1], name[1] if name else ""))
                self.doc = None
                return index + 1
            index += 1
            # The last enumerator has no comma.
            if is_complete(lines, in_enum) or (in_enum and self.lines[index].strip().startswith("}")):
                self.statement(lines)
                return index
            lines.append(self.lines[index])


PLAIN_FUNCTION = re.compile(r"^VEL_C_API [^;(]*?\*?(\w+)\(", re.M)


def plain_functions(files):
    """Returns a list of the plain functions that each header declares, as lines of a comment."""
    lines = [""]
    for path in sorted(files):
        if names := PLAIN_FUNCTION.findall(path.read_text(encoding="utf-8")):
            lines.append(f"- {path.name}: " + ", ".join(f"@ref {name}" for name in names))
    return lines


def prepared(text, ccsid_words, top_lines=()):
    """Returns the header for Doxygen; `top_lines` are added to the comment at its top."""
    lines = Header(text, ccsid_words).convert().split("\n")
    end = lines.index("")
    return "\n".join(lines[:end] + [f"/// {line}".rstrip() for line in top_lines] + lines[end:])
