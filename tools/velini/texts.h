// The texts of velini as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::velini {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kExactlyOneTask,
  kSectionRequired,
  kValueRequired,
  kAssignmentExpected,
  kUnknownDialect,
  kNoContinueInDialect,
  kUnknownFormat,
  kPrefixForShell,
  kNoPrefix,
  kNoShellDiff,
  kNotRead,
  kNotWritten,
  kLocked,
  kReplaced,
  kRightsChanged,
  kNotFound,
  kExists,
  kSetRepeated,
  kRefused,
  kUnsafeName,
  kNoClosingBracket,
  kNoEqualSign,
  kNothingContinued,
  kLineTooLong,
  kWideText,
  kByteOrderMark,
  kNulByte,
  kLineWithNul,
  kLoneReturn,
  kNoSectionYet,
  kBadName,
  kMalformedValue,
  kRepeats,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 39",
    "[VELINI]",
    "INI file tool",
    "reads, edits and checks INI files",
    "(-file <file>) [(-section <name>)] [(-dialect <dialect>)]\n"
    "[(-get <option>)] [-list] [-sections] [-check] [(-diff <file>)]\n"
    "[(-set <assignment>)] [(-add <assignment>)] [(-delete <option>)]\n"
    "[(-rename <names>)] [(-comment <option>)]\n"
    "[-delsection] [(-renamesection <name>)] [(-merge <file>)]\n"
    "[(-format <form>)] [(-prefix <prefix>)]\n"
    "[-nocontinue] [(-wait <seconds>)]",
    "-file <file>        the INI file; if it does not exist and has no extension, the file with\n"
    "                    .INI. - is standard input, and edited text is then written to\n"
    "                    standard output\n"
    "-section <name>     the section for -get, -list, -diff and the edits after it\n"
    "-dialect <dialect>  ini (default), git, systemd, php, python or desktop\n"
    "-get <option>       print the value of an option\n"
    "-list               print all options, or only those of the section\n"
    "-sections           print the names of all sections\n"
    "-check              print every syntax error as file:line: text, also a byte order mark,\n"
    "                    UTF-16, NUL bytes, carriage returns that do not end a line, lines that\n"
    "                    are too long, and options before the first section\n"
    "-diff <file>        print the options that differ from those of a second file; exit code\n"
    "                    0 if there are none, 1 otherwise, also if no file has the section\n"
    "-set <assignment>   option=value: change the option, or add it, and its section\n"
    "-add <assignment>   option=value: add an option, which may exist only in dialects where\n"
    "                    options repeat\n"
    "-delete <option>    remove an option\n"
    "-rename <names>     old=new: give an option another name\n"
    "-comment <option>   make an option a comment\n"
    "-delsection         remove the section\n"
    "-renamesection <name>  give the section another name\n"
    "-merge <file>       set every option of a second file in the first; - is standard input.\n"
    "                    If sections or options repeat, the one that counts\n"
    "-format <form>      plain (default), ini, shell or json\n"
    "-prefix <prefix>    prefix for the names of shell variables, such as CONFIG_\n"
    "-nocontinue         lines that begin with white space do not continue the line before\n"
    "-wait <seconds>     how long to wait for a file that another velini is editing; default\n"
    "                    30\n"
    "@\n"
    "Edits can be given several times, and are made in their order: all of them, or none if\n"
    "one is refused. -section applies to the edits after it up to the next -section. Editing\n"
    "preserves every other byte. The file is replaced in one step, and not at all if a change\n"
    "could not be read back.\n"
    "@\n"
    "Plain lists have section, option and value separated by tabs; in them \\n, \\t, \\r and\n"
    "\\\\ mean line break, tab, return and backslash. Lines of -diff begin with - for what only\n"
    "-file has, and + for the second file. If options or sections repeat, the first one\n"
    "counts, and with -dialect the last one. Shell and json show only the one that counts.\n"
    "@\n"
    "The dialects are those of Git configuration, systemd units, php.ini, configparser of\n"
    "Python, and desktop files. In git, a subsection follows a dot: remote.origin. -set\n"
    "refuses an option that occurs more than once; the other edits change all of its lines.\n"
    "@\n"
    "The name of a shell variable consists of section and option, with _ for each character\n"
    "that is not allowed, so two options can have the same variable. Without -prefix, a name\n"
    "must contain a lower-case letter (PATH, IFS, LD_PRELOAD and the like belong to the shell\n"
    "and the system) and must not exist in the environment. Names that are known to control\n"
    "programs, such as http_proxy, are always refused. If a name is refused, nothing is\n"
    "written. For files that other users write, use a prefix of the script's own.\n"
    "@\n"
    "Edits lock the file (or the directory of a new file) from reading to replacing, so that\n"
    "several velini lose no changes. The lock does not stop other programs; but if one of them\n"
    "changes the file in the meantime, the file is left alone and the exit code is 3.\n"
    "@\n"
    "If the owner or the permissions of the file cannot be kept, a message says so and the\n"
    "exit code remains 0.\n"
    "@\n"
    "--help and --version take precedence over all other arguments.\n"
    "Exit codes: 0 success, 1 not found, syntax errors or differences, 2 file not read, 3\n"
    "output not written, 4 change refused, 5 file locked, 6 name of a shell variable refused, 200\n"
    "out of memory, 201 to 204 errors in the command line.",
    "Either edits or exactly one of -get, -list, -sections, -check and -diff must be given",
    "-section is required",
    "A value is required",
    "-set and -add require option=value, and -rename requires old=new",
    "The dialect must be ini, git, systemd, php, python or desktop",
    "-nocontinue cannot be given with -dialect",
    "The format must be plain, ini, shell or json",
    "-prefix requires -format shell",
    "The prefix must begin with a letter, contain only letters, digits and _, and end with _",
    "-diff has no form for the shell",
    "The file could not be read",
    "The output could not be written",
    "The file is still locked by another program",
    "The file was not changed, because another program changed it in the meantime",
    "The file was written, but its owner or permissions could not be kept",
    "Not found",
    "The name exists already",
    "The option occurs more than once; delete it first, or add a value with -add",
    "The change could not be read back",
    "The shell or the system may use a variable of this name; choose a prefix with -prefix",
    "the header has no closing bracket",
    "the option has no equal sign",
    "the line begins with white space but continues nothing",
    "the line is too long; nothing after it is read",
    "the text is UTF-16 or UTF-32; convert it to UTF-8",
    "the file begins with a byte order mark, and programs may not find a section in the first line",
    "the text contains a NUL byte",
    "the line contains a NUL byte; nothing of the line after it is read",
    "a carriage return without a line feed does not end the line",
    "options before the first section are not read",
    "the name is missing or not allowed",
    "the value has a string without end or an unknown escape",
    "the name occurred before",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velini
