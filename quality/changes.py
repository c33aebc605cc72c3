"""Generates changes (mutations) of a C++ source that good tests detect. Each changes one operator, constant or
statement.

Requires sources formatted by clang-format: it relies on blanks around binary operators, and on none inside template
brackets.
"""
import bisect
import collections
import re

# A change replaces the bytes from `start` to `end` of a file with `new`.
Change = collections.namedtuple("Change", "kind start end new")

RELATIONS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",)}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "&",
              "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "%=": "/=", "<<=": ">>=", ">>=": "<<=", "&=": "|=",
              "|=": "&=", "^=": "&=", "++": "--", "--": "++"}
LOGICAL = {"&&": "||", "||": "&&"}
BOOLEANS = {"true": "false", "false": "true"}

HIDDEN = re.compile(r"""//[^\n]* | /\*.*?\*/ | R"([^(\s]*)\(.*?\)\1" | "(?:\\.|[^"\\\n])*"
                        | (?<![0-9A-Za-z])'(?:\\.|[^'\\\n])+' | ^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*
                        | \bstatic_assert\b[^;]*;""", re.X | re.S | re.M)
NUMBER = re.compile(r"(?<![\w.'])(?:0[xX][0-9a-fA-F']+|\d[\d']*)[uUlLzZ]*(?![\w.'])")
PURE = re.compile(r"\) *(?:const)? *(?:noexcept)? *= 0;")
CONDITION = re.compile(r"\b(?:if|while) \(")
DECLARATION = re.compile(r"(?:const )?[\w:<>]+[&*]* (?:const )?[&*]?[\w\[]")
# An expression that is assigned or called, without a type before it.
PLACE = r"\*?[A-Za-z_][\w:]*(?:(?:\.|->)\w+|\[[^\]\n]*\]|\([^()\n]*\))*"
STATEMENT = re.compile(rf"(?:{PLACE}(?:\(.*\)| (?:[-+*/%&|^]|<<|>>)?= .*)|(?:\+\+|--){PLACE}|{PLACE}(?:\+\+|--));")
LEAVING = re.compile(r"(?:return\b.*|break|continue);")


def visible(source):
    """Returns the source with blanks in place of comments, string literals, directives and static assertions."""
    return HIDDEN.sub(lambda match: re.sub(r"[^\n]", " ", match[0]), source)


def replaced(kind, code, pattern, choices):
    for match in re.finditer(pattern, code):
        for new in (lambda found: (found,) if isinstance(found, str) else found)(choices[match[1]]):
            yield Change(kind, match.start(1), match.end(1), new)


def alternatives(operators):
    return "|".join(re.escape(text) for text in sorted(operators, key=len, reverse=True))


def operators(code):
    yield from replaced("relation", code, rf"(?<= )({alternatives(RELATIONS)})(?= )", RELATIONS)
    yield from replaced("logic", code, rf"(?<= )({alternatives(LOGICAL)})(?=\s)", LOGICAL)
    binary = [operator for operator in ARITHMETIC if operator not in ("++", "--")]
    yield from replaced("arithmetic", code, rf"(?<= )({alternatives(binary)})(?=\s)", ARITHMETIC)
    yield from replaced("arithmetic", code, r"(\+\+|--)", ARITHMETIC)
    yield from replaced("boolean", code, r"\b(true|false)\b", BOOLEANS)


def closing(code, opening):
    """Returns the position of the bracket that closes the one at `opening`."""
    depth = 0
    for place in range(opening, len(code)):
        depth += (code[place] == "(") - (code[place] == ")")
        if depth == 0:
            return place
    return len(code) - 1


def negations(source, code):
    for match in CONDITION.finditer(code):
        start, end = match.end(), closing(code, match.end() - 1)
        if ";" not in code[start:end] and not (" = " in code[start:end] and DECLARATION.match(code, start)):
            yield Change("negation", start, end, f"!({source[start:end]})")
    for match in re.finditer(r"!(?=[\w(])", code):
        yield Change("negation", match.start(), match.end(), "")


def constants(code):
    pure = {match.end() - 2 for match in PURE.finditer(code)}
    for match in NUMBER.finditer(code):
        if match.start() not in pure:
            for step in ("+ 1", "- 1"):
                yield Change("constant", match.start(), match.end(), f"({match[0]} {step})")


def statement_after_condition(code, line_start, line_end):
    """Returns the position of the statement in `if (...) statement;`."""
    match = re.compile(r"\s*(?:else )?(?:(?:if|while|for) \(|else )").match(code, line_start, line_end)
    if match is None:
        return None
    return closing(code, match.end() - 1) + 2 if match[0].endswith("(") else match.end()


def statements(code):
    """Generates the removal of single-line statements, and early returns before them."""
    start, before = 0, "{"
    for line in code.split("\n"):
        end, text = start + len(line.rstrip()), line.strip()
        at = statement_after_condition(code, start, end)
        if at is not None and at < end:
            if STATEMENT.fullmatch(code, at, end) or LEAVING.fullmatch(code, at, end):
                yield Change("statement", at, end, "{}")
        elif before.endswith((";", "{", "}", ")", "else")) and STATEMENT.fullmatch(text):
            begin = start + len(line) - len(line.lstrip())
            yield Change("statement", begin, end, "{}")
            for leave in ("return; ", "return {}; "):
                yield Change("return", begin, begin, leave)
        before = text or before
        start += len(line) + 1


def find_changes(source):
    """Returns all changes, in source order."""
    code = visible(source)
    found = [*operators(code), *negations(source, code), *constants(code), *statements(code)]
    return sorted(found, key=lambda change: (change.start, change.end, change.new))


def apply(source, change):
    return source[:change.start] + change.new + source[change.end:]


def line_of(source, change):
    """Returns the line number, and the line before and after the change."""
    starts = [0] + [match.end() for match in re.finditer("\n", source)]
    number = bisect.bisect_right(starts, change.start)
    after = apply(source, change)
    last = after.find("\n", change.start + len(change.new))
    return (number, source.split("\n")[number - 1].strip(),
            " ".join(after[starts[number - 1]:last if last >= 0 else len(after)].split()))
