// What velini says, as a string table: ids are the indexes.
#pragma once

#include <iterator>

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
  kNotRead,
  kNotWritten,
  kNotFound,
  kRefused,
  kNoClosingBracket,
  kNoEqualSign,
  kNothingContinued,
  kLineTooLong,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 18",
    "[VELINI]",
    "INI file tool",
    "reads, edits and checks INI files",
    "(-file <file>) [(-section <name>)]\n"
    "[(-get <option>)]\n"
    "[(-set <assignment>)]\n"
    "[(-delete <option>)] [-delsection]\n"
    "[-list] [-sections] [-check]\n"
    "[(-merge <file>)]\n"
    "[(-format <form>)] [-nocontinue]",
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
    "-nocontinue         lines that begin with white space continue nothing\n"
    "@\n"
    "Editing leaves every other byte as it is. The file is replaced in one step, and not\n"
    "at all when the change would not be read back. Lists are plain as section, option\n"
    "and value with tabs between; \\n, \\t, \\r and \\\\ stand for line break, tab, return\n"
    "and back-slash there. Of options and sections that repeat, shell and json show the\n"
    "first. Shell variables are named for section and option, with _ for what a name\n"
    "cannot hold, so two options can meet; do not evaluate them of files that you do not\n"
    "trust. --help and --version are answered before anything else.\n"
    "Exit codes: 0 success, 1 not found or syntax errors, 2 file not read, 3 output not\n"
    "written, 4 change refused, 200 out of memory, 201 to 204 faults of the command\n"
    "line.",
    "Exactly one of -get, -set, -delete, -delsection, -list, -sections, -merge and -check must be given",
    "-section is needed",
    "option=value is expected",
    "The form is none of plain, ini, shell and json",
    "The file could not be read",
    "The output could not be written",
    "Not found",
    "The change would not be read back",
    "the header has no closing bracket",
    "the option has no equal sign",
    "there is nothing that white space could continue",
    "the line is too long, and nothing behind it is read",
};
static_assert(std::size(kTexts) == kTextEnd);

}  // namespace vel::velini
