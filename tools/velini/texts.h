// The texts of velini as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::velini {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kOneTask,
  kSectionNeeded,
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
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 24",
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
    "-file <file>        the INI file; without extension .INI is added; - is standard\n"
    "                    input, and what is edited goes to standard output then\n"
    "-section <name>     the section for -get, -set, -delete, -delsection and -list\n"
    "-get <option>       the value of an option\n"
    "-set <assignment>   option=value: changes or adds the option, and the section\n"
    "-delete <option>    removes an option\n"
    "-delsection         removes the section\n"
    "-list               all options, those of the section only if one is given\n"
    "-sections           the names of all sections\n"
    "-merge <file>       sets every option of a second file in the first; - is standard\n"
    "                    input; of sections and options that repeat, the first counts\n"
    "-check              prints every syntax error as file:line: text\n"
    "-format <form>      plain (as it is at first), ini, shell or json\n"
    "-prefix <prefix>    begins the names of shell variables, such as CONFIG_\n"
    "-nocontinue         lines that begin with white space continue nothing\n"
    "-wait <seconds>     how long to wait for a file that another velini is editing; 30 at\n"
    "                    first\n"
    "@\n"
    "Editing leaves every other byte as it is. The file is replaced in one step, and not\n"
    "at all when the change would not be read back. Lists are plain as section, option\n"
    "and value with tabs between; \\n, \\t, \\r and \\\\ stand for line break, tab, return\n"
    "and backslash there. Of options and sections that repeat, shell and json show the\n"
    "first.\n"
    "@\n"
    "Shell variables are named for section and option, with _ for what a name cannot hold,\n"
    "so two options can meet. Without -prefix a name must have a lower-case letter (others\n"
    "belong to the shell and the system: PATH, IFS, LD_PRELOAD) and not be set in the\n"
    "environment; never may it be one that is known to steer programs, such as http_proxy.\n"
    "If one name is refused nothing is written. Use a prefix of the script's own for files\n"
    "that others write.\n"
    "@\n"
    "Edits lock the file, or the directory of a new one, from reading to replacing, so that\n"
    "several velini lose nothing; other programs are not kept away, but a file that one of\n"
    "them changes meanwhile is left alone, with exit code 3.\n"
    "@\n"
    "When the file's owner or permissions cannot be kept, a message says so and the exit\n"
    "code stays 0.\n"
    "@\n"
    "--help and --version are answered before anything else.\n"
    "Exit codes: 0 success, 1 not found or syntax errors, 2 file not read, 3 output not\n"
    "written, 4 change refused, 5 file locked, 6 name of a shell variable refused, 200\n"
    "out of memory, 201 to 204 faults of the command line.",
    "Exactly one of -get, -set, -delete, -delsection, -list, -sections, -merge and -check must be given",
    "-section is needed",
    "option=value is expected",
    "The form is none of plain, ini, shell and json",
    "-prefix is for -format shell",
    "The prefix is not a letter, letters, digits and _, and a _ at the end",
    "The file could not be read",
    "The output could not be written",
    "The file is locked by another program, and the time to wait is over",
    "Another program has changed the file meanwhile, and this change was not made",
    "The file is written, but owner or permissions could not be kept",
    "Not found",
    "The change would not be read back",
    "The shell or the system may use a variable of this name; -prefix gives names of one's own",
    "the header has no closing bracket",
    "the option has no equal sign",
    "there is nothing that white space could continue",
    "the line is too long, and nothing after it is read",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velini
