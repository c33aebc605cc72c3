"""Generates the completion of a program's command line for bash, zsh, fish and PowerShell.

What completes the value of a switch is, in this order: a line of the table of values, alternatives in the placeholder
of the usage string ("<text|tsv>"), or the name of the placeholder ("<file>"). Each line of the table is one of

    -switch: word word...      these words
    -switch: <file>            files, or <directory>
    -switch: $ command...      the first column of what the command prints, columns being separated by tabs; $2 is the
                               second. {-other} is the value of another switch on the command line
"""
import re
import shlex
from dataclasses import dataclass, field

from tool_texts import help_options, parse_usage

FILES = {"file", "filename", "files", "path"}
DIRECTORIES = {"directory", "dir", "folder"}


@dataclass
class Source:
    """Where the candidates for a value come from. An empty one has none."""
    kind: str = ""  # "files", "directories", "words" or "command"
    words: list = field(default_factory=list)
    column: int = 1


@dataclass
class Switch:
    name: str
    value: str
    help: str
    source: Source


def source_of_placeholder(name):
    if name in FILES:
        return Source("files")
    if name in DIRECTORIES:
        return Source("directories")
    return Source("words", name.split("|")) if "|" in name else Source()


def source_of_line(text):
    placeholder = re.fullmatch(r"<(.*)>", text)
    command = re.match(r"\$(\d*)\s+(.*)", text)
    if placeholder:
        return source_of_placeholder(placeholder[1])
    if command:
        return Source("command", shlex.split(command[2]), int(command[1] or 1))
    return Source("words", text.split())


def read_values(lines):
    """Returns the sources by the names of their switches."""
    result = {}
    for line in lines:
        name, colon, text = line.partition(":")
        if not colon or not name.startswith("-") or not text.strip():
            raise SystemExit(f"no line of a table of values: {line}")
        result[name.strip()] = source_of_line(text.strip())
    return result


def brief(text):
    """Returns the first clause of a description, and nothing of a table in it."""
    return re.split(r"[;:.](?=\s)|\s\s", text.strip())[0].rstrip(".;:")


def switches_of(texts, values):
    """Returns all switches, the standard ones last, and the source of free arguments."""
    usage = parse_usage(texts.usage)
    helps = {term.split()[0]: text for term, text in help_options(texts.help)}
    unknown = set(values) - set(usage.switches) - set(texts.standard_switches)
    if unknown:
        raise SystemExit(f"{texts.name} has no switch {', '.join(sorted(unknown))}")
    found = []
    for name, value in usage.switches.items():
        value = value or ""
        source = values.get(name) or source_of_placeholder(value)
        found.append(Switch(name, value, brief(helps.get(name, "")), source))
    for term, text in texts.standard_switches.items():
        name, _, value = term.partition(" ")
        found.append(Switch(name, value.strip("<>"), text, source_of_placeholder(value.strip("<>"))))
    free = Source()
    for name in usage.free:
        free = free if free.kind else source_of_placeholder(name)
    return found, free


def literal(words):
    """Returns words for a place where zsh and fish expand variables and commands."""
    return " ".join(re.sub(r"([^\w.,+/%=@-])", r"\\\1", word) for word in words)


class Shell:
    """What the shells have in common: the names of functions, and quoting in single quotes."""
    quote_in_quotes = "'\\''"

    def __init__(self, texts, values):
        self.texts = texts
        self.name = texts.name
        self.function = re.sub(r"\W", "_", texts.name)
        self.switches, self.free = switches_of(texts, values)

    def quoted(self, text):
        return "'" + text.replace("'", self.quote_in_quotes) + "'"

    def spellings(self, switch):
        """Returns the name, and the one with two dashes where programs take both."""
        both = self.texts.conventions and len(switch.name) > 2 and switch.name[1] != "-"
        return [switch.name, "-" + switch.name] if both else [switch.name]

    def offered(self):
        """Returns the names to offer, and those for a word that begins with two dashes."""
        names = [switch.name for switch in self.switches]
        return names, [self.spellings(switch)[-1] for switch in self.switches if self.spellings(switch)[-1][1] == "-"]

    def references(self, source):
        """Returns the switches whose values a command needs, each with the name of a variable."""
        names = [word[1:-1] for word in source.words if re.fullmatch(r"\{-.*\}", word)]
        return {name: f"value{number}" for number, name in enumerate(dict.fromkeys(names), 1)}

    def command(self, source, program):
        """Returns the words of a command in the shell's language; its own program is called as the user does."""
        references = self.references(source)
        words = [f'"${references[word[1:-1]]}"' if word[1:-1] in references else self.quoted(word)
                 for word in source.words]
        return " ".join([program if source.words[0] == self.name else words[0], *words[1:]])


class Bash(Shell):
    TEMPLATE = """\
# Completion for bash of the command line of @NAME@, generated from its usage string.

# Prints the value that a switch has on the command line.
_@FUNCTION@_value() {
  local i word
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ ${COMP_WORDS[i]} == "$1" || ${COMP_WORDS[i]} == "-$1" ]] || continue
    word=${COMP_WORDS[i + 1]}
    [[ $word == '=' ]] && word=${COMP_WORDS[i + 2]}
    word=${word//[\\"\\'\\\\]/}
    [[ $word == '~/'* ]] && word=$HOME/${word:2}
    printf '%s' "$word"
    return 0
  done
  return 1
}

# Offers the lines of standard input that begin like the word.
_@FUNCTION@_offer() {
  local candidate word=${1//[\\"\\'\\\\]/}
  while IFS= read -r candidate; do
    candidate=${candidate%$'\\r'}
    [[ -n $candidate && $candidate == "$word"* ]] && COMPREPLY+=("$(printf %q "$candidate")")
  done
  return 0
}

_@FUNCTION@_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$2" -- "$1")
}

_@FUNCTION@() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} value1 value2
  COMPREPLY=()
@EQUALS@  case $previous in
@VALUES@  esac
  if [[ $current == --* ]]; then
    _@FUNCTION@_offer "$current" < <(printf '%s\\n' @LONG@)
  elif [[ $current == -* ]]; then
    _@FUNCTION@_offer "$current" < <(printf '%s\\n' @SWITCHES@)
  else
    @FREE@
  fi
}
complete -F _@FUNCTION@ @NAME@
"""
    # bash splits "--name=value" at the "=" and has three words then.
    EQUALS = """\
  if [[ $current == '=' ]]; then
    current=
  elif [[ $previous == '=' ]] && ((COMP_CWORD > 1)); then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [[ " ${COMP_WORDS[*]:1:COMP_CWORD-1} " == *' -- '* ]]; then
    @FREE@
    return
  fi
"""

    def action(self, source):
        offer = f'_{self.function}_offer "$current" < <('
        if source.kind in ("files", "directories"):
            return f'_{self.function}_files "$current" {"-f" if source.kind == "files" else "-d"}'
        if source.kind == "words":
            return offer + "printf '%s\\n' " + " ".join(map(self.quoted, source.words)) + ")"
        if source.kind == "command":
            values = [f"{variable}=$(_{self.function}_value {name}) && "
                      for name, variable in self.references(source).items()]
            command = self.command(source, '"${COMP_WORDS[0]}"')
            return f"{''.join(values)}{offer}{command} 2>/dev/null </dev/null | cut -f{source.column})"
        return ":"

    def script(self):
        values = "".join(f"    {'|'.join(self.spellings(switch))}) {self.action(switch.source)}; return ;;\n"
                         for switch in self.switches if switch.value)
        names, long_names = (" ".join(map(self.quoted, offered)) for offered in self.offered())
        free = self.action(self.free)
        return replaced(self.TEMPLATE, EQUALS=self.EQUALS if self.texts.conventions else "", VALUES=values,
                        SWITCHES=names, LONG=long_names, FREE=free, FUNCTION=self.function, NAME=self.name)


class Zsh(Shell):
    TEMPLATE = """\
#compdef @NAME@
# Completion for zsh of the command line of @NAME@, generated from its usage string.

# Prints the value that a switch has on the command line.
_@FUNCTION@_value() {
  local i
  for ((i = 2; i < CURRENT; ++i)); do
    case $words[i] in
      $1|-$1) print -r -- ${(Q)${words[i + 1]/#\\~\\//$HOME/}}; return 0 ;;
      $1=*|-$1=*) print -r -- ${(Q)words[i]#*=}; return 0 ;;
    esac
  done
  return 1
}

@FUNCTIONS@_arguments @OPTIONS@
"""

    def escaped(self, text):
        return re.sub(r"([\[\]:\\])", r"\\\1", text)

    def action(self, switch):
        kind = switch.source.kind
        if kind == "words":
            return f"({literal(switch.source.words)})"
        if kind == "command":
            return self.function_of(switch)
        return {"files": "_files", "directories": "_directories"}.get(kind, " ")

    def function_of(self, switch):
        return f"_{self.function}_" + re.sub(r"\W", "_", switch.name.lstrip("-"))

    def functions(self):
        for switch in self.switches:
            source = switch.source
            if source.kind != "command":
                continue
            references = self.references(source)
            yield f"{self.function_of(switch)}() {{\n  local {' '.join(references.values())}\n  local -a candidates\n"
            for name, variable in references.items():
                yield f"  {variable}=$(_{self.function}_value {name}) || return 1\n"
            command = self.command(source, "${(Q)words[1]}")
            yield (f'  candidates=(${{(f)"$({command} 2>/dev/null </dev/null | cut -f{source.column})"}})\n'
                   "  compadd -a candidates\n}\n\n")

    def options(self):
        if self.texts.conventions:
            yield "-S"
        for switch in self.switches:
            names = self.spellings(switch)
            for name in names:
                others = "(" + " ".join(names) + ")" if len(names) > 1 else ""
                equals = "=" if switch.value and self.texts.conventions else ""
                value = f":{self.escaped(switch.value)}:{self.action(switch)}" if switch.value else ""
                yield self.quoted(f"{others}{name}{equals}[{self.escaped(switch.help)}]{value}")
        if self.free.kind:
            yield self.quoted("*:file:" + ("_files" if self.free.kind == "files" else "_directories"))

    def script(self):
        return replaced(self.TEMPLATE, FUNCTIONS="".join(self.functions()), OPTIONS=" \\\n  ".join(self.options()),
                        FUNCTION=self.function, NAME=self.name)


class Fish(Shell):
    quote_in_quotes = "\\'"
    TEMPLATE = """\
# Completion for fish of the command line of @NAME@, generated from its usage string.

# Prints the value that a switch has on the command line.
function __@FUNCTION@_value
  set -l words (commandline -opc)
  for i in (seq (count $words))
    switch $words[$i]
      case $argv[1] "-$argv[1]"
        set -l next (math $i + 1)
        if set -q words[$next]
          string replace -r '^~/' "$HOME/" -- $words[$next]
          return 0
        end
      case "$argv[1]=*" "-$argv[1]=*"
        string replace -r '^[^=]*=' '' -- $words[$i]
        return 0
    end
  end
  return 1
end

@FUNCTIONS@complete -c @NAME@ @FREE@
@OPTIONS@"""

    def quoted(self, text):
        return super().quoted(text.replace("\\", "\\\\"))

    def function_of(self, switch):
        return f"__{self.function}_" + re.sub(r"\W", "_", switch.name.lstrip("-"))

    def functions(self):
        for switch in self.switches:
            source = switch.source
            if source.kind != "command":
                continue
            yield f"function {self.function_of(switch)}\n"
            for name, variable in self.references(source).items():
                yield f"  set -l {variable} (__{self.function}_value {name}); or return\n"
            yield f"  {self.command(source, self.name)} 2>/dev/null </dev/null | cut -f{source.column}\nend\n\n"

    def value_options(self, switch):
        kind = switch.source.kind
        if not switch.value:
            return ""
        if kind == "files":
            return " -r -F"
        candidates = {"words": literal(switch.source.words), "command": f"({self.function_of(switch)})",
                      "directories": "(__fish_complete_directories)"}.get(kind)
        return " -x" + (f" -a {self.quoted(candidates)}" if candidates else "")

    def options(self):
        for switch in self.switches:
            for name in self.spellings(switch):
                dashes = len(name) - len(name.lstrip("-"))
                letter = "-l" if dashes == 2 else "-s" if len(name) == 2 else "-o"
                help_text = f" -d {self.quoted(switch.help)}" if switch.help else ""
                yield f"complete -c {self.name} {letter} {name[dashes:]}{self.value_options(switch)}{help_text}\n"

    def script(self):
        free = {"files": "-F", "directories": "-f -a '(__fish_complete_directories)'"}.get(self.free.kind, "-f")
        return replaced(self.TEMPLATE, FUNCTIONS="".join(self.functions()), OPTIONS="".join(self.options()), FREE=free,
                        FUNCTION=self.function, NAME=self.name)


class PowerShell(Shell):
    quote_in_quotes = "''"
    TEMPLATE = """\
# Completion for PowerShell of the command line of @NAME@, generated from its usage string. Load it in a profile:
#   . path/to/@NAME@.ps1
# Where there is nothing to offer, PowerShell completes the names of files.
Register-ArgumentCompleter -Native -CommandName '@NAME@', '@NAME@.exe' -ScriptBlock {
  param($current, $line, $position)
  $words = @($line.CommandElements | Where-Object { $_.Extent.StartOffset -lt $position } | ForEach-Object { "$_" })
  if ($current -ne '') { $words = @($words | Select-Object -SkipLast 1) }
  $option = if ($words.Count -gt 0) { $words[-1] } else { '' }
  $prefix = ''
  if ($current -match '^(-[^=]+=)(.*)$') {
    $prefix = $Matches[1]
    $option = $prefix.TrimEnd('=')
    $current = $Matches[2]
  }
  $program = $words[0]
  $valueOf = {
    param($name)
    for ($i = 1; $i -lt $words.Count; ++$i) {
      if ($words[$i] -in $name, "-$name" -and $i + 1 -lt $words.Count) { return $words[$i + 1].Trim('"', "'") }
      if ($words[$i] -match "^-?$([regex]::Escape($name))=(.*)$") { return $Matches[1].Trim('"', "'") }
    }
  }
  $offers = @(switch -CaseSensitive ($option) {
@VALUES@    default {
      if ($current -like '--*') { @LONG@ } elseif ($current -like '-*') { @SWITCHES@ }
    }
  })
  $offers | Where-Object { $_ -like "$([WildcardPattern]::Escape($current))*" } | ForEach-Object {
    $text = if ($_ -match '[\\s''"`$;&|(){}]') { "'" + $_.Replace("'", "''") + "'" } else { $_ }
    [System.Management.Automation.CompletionResult]::new("$prefix$text", $_, 'ParameterValue', $_)
  }
}
"""

    def action(self, source):
        if source.kind == "words":
            return ", ".join(map(self.quoted, source.words))
        if source.kind != "command":
            return ""
        references = self.references(source)
        values = "".join(f"${variable} = & $valueOf '{name}'; " for name, variable in references.items())
        condition = " -and ".join(f"${variable}" for variable in references.values())
        column = f'($_ -split "`t")[{source.column - 1}]'
        run = f"& {self.command(source, '$program')} 2>$null | ForEach-Object {{ {column} }}"
        return f"{values}if ({condition}) {{ {run} }}" if condition else run

    def script(self):
        values = ""
        for switch in self.switches:
            names = ", ".join(map(self.quoted, self.spellings(switch)))
            if switch.value:
                values += f"    {{ $_ -cin {names} }} {{ {self.action(switch.source) or '$null'}; break }}\n"
        names, long_names = (", ".join(map(self.quoted, offered)) for offered in self.offered())
        return replaced(self.TEMPLATE, VALUES=values, SWITCHES=names, LONG=long_names, NAME=self.name)


def replaced(template, **texts):
    for name, text in texts.items():
        template = template.replace(f"@{name}@", text)
    return template


SHELLS = {"bash": Bash, "zsh": Zsh, "fish": Fish, "powershell": PowerShell}


def completion(shell, texts, values):
    return SHELLS[shell](texts, values).script()
