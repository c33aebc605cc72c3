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
  kAssignmentExpected,
  kUnknownFormat,
  kPrefixForShell,
  kNoPrefix,
  kNotRead,
  kNotWritten,
  kLocked,
  kReplaced,
  kRightsChanged,
  kNotFound,
  kRefused,
  kUnsafeName,
  kNoClosingBracket,
  kNoEqualSign,
  kNothingContinued,
  kLineTooLong,
  kWideText,
  kByteOrderMark,
  kNoSectionYet,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 27",
    "[VELINI]",
    "INI file tool",
    "reads, edits and checks INI files",
    "(-file <file>) [(-section <name>)]\n"
    "[(-get <option>)]\n"
    "[(-set <assignment>)]\n"
    "[(-delete <option>)] [-delsection]\n"
    "[-list] [-sections] [-check]\n"
    "[(-merge <file>)]\n"
    "[(-format <form>)] [(-prefix <prefix>)]\n"
    "[-nocontinue] [(-wait <seconds>)]",
    "-file <file>        the INI file; if it does not exist and has no extension, the file with\n"
    "                    .INI. - is standard input, and edited text is then written to\n"
    "                    standard output\n"
    "-section <name>     the section for -get, -set, -delete, -delsection and -list\n"
    "-get <option>       print the value of an option\n"
    "-set <assignment>   option=value: change the option, or add it, and its section\n"
    "-delete <option>    remove an option\n"
    "-delsection         remove the section\n"
    "-list               print all options, or only those of the section\n"
    "-sections           print the names of all sections\n"
    "-merge <file>       set every option of a second file in the first; - is standard input.\n"
    "                    If sections or options repeat, the first one counts\n"
    "-check              print every syntax error as file:line: text, also a byte order mark,\n"
    "                    UTF-16, and options before the first section\n"
    "-format <form>      plain (default), ini, shell or json\n"
    "-prefix <prefix>    prefix for the names of shell variables, such as CONFIG_\n"
    "-nocontinue         lines that begin with white space do not continue the line before\n"
    "-wait <seconds>     how long to wait for a file that another velini is editing; default\n"
    "                    30\n"
    "@\n"
    "Editing preserves every other byte. The file is replaced in one step, and not at all if\n"
    "the change could not be read back. Plain lists have section, option and value separated\n"
    "by tabs; in them \\n, \\t, \\r and \\\\ mean line break, tab, return and backslash. If\n"
    "options or sections repeat, shell and json show only the first.\n"
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
    "Exit codes: 0 success, 1 not found or syntax errors, 2 file not read, 3 output not\n"
    "written, 4 change refused, 5 file locked, 6 name of a shell variable refused, 200\n"
    "out of memory, 201 to 204 errors in the command line.",
    "Exactly one of -get, -set, -delete, -delsection, -list, -sections, -merge and -check must be given",
    "-section is required",
    "-set requires option=value",
    "The format must be plain, ini, shell or json",
    "-prefix requires -format shell",
    "The prefix must begin with a letter, contain only letters, digits and _, and end with _",
    "The file could not be read",
    "The output could not be written",
    "The file is still locked by another program",
    "The file was not changed, because another program changed it in the meantime",
    "The file was written, but its owner or permissions could not be kept",
    "Not found",
    "The change could not be read back",
    "The shell or the system may use a variable of this name; choose a prefix with -prefix",
    "the header has no closing bracket",
    "the option has no equal sign",
    "the line begins with white space but continues nothing",
    "the line is too long; nothing after it is read",
    "the text is UTF-16 or UTF-32; convert it to UTF-8",
    "the file begins with a byte order mark, and programs may not find a section in the first line",
    "options before the first section are not read",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velini
