// The texts of velmsg as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::velmsg {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kCatalogNotLoaded,
  kNumberExpected,
  kUnknownNumber,
  kUnexpectedArgument,
  kExactlyOneTask,
  kSourcesConflict,
  kSourceRequired,
  kLangRequiresList,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 14",
    "[VELMSG]",
    "Message catalog inspector",
    "shows the contents of a message catalog",
    "[(-cat <file>)] [-builtin]\n"
    "[-list] [(-lang <number>)] [-langs]\n"
    "[(-id <id>) [(-var <text>) [<text> ...]]]\n"
    "[(-diff <file>)] [(-error <number>)]",
    "-cat <file>      the message catalog, with or without directory; the extension is replaced\n"
    "                 by .DLL. If there is no such library, the file itself: any DLL, program\n"
    "                 or .mui file with a message table. For a library without one, the .mui\n"
    "                 file of the user's language or of en-US, such as en-US\\a.dll.mui.\n"
    "                 - is standard input\n"
    "-builtin         the library's built-in messages instead of a catalog\n"
    "-list            list every message: id, language number, text\n"
    "-lang <number>   list only this language, for example 1031\n"
    "-langs           list the languages of the catalog: language number, number of messages\n"
    "-id <id>         print one message in the user's language\n"
    "-var <text> ...  the inserts of the message, up to ten; missing ones show as ???\n"
    "-diff <file>     compare with a second catalog: ids that are only in the first (<)\n"
    "                 or only in the second (>), and ids whose inserts differ (!); - is\n"
    "                 standard input\n"
    "-error <number>  print all names of a number: identifier, class, severity, action, and\n"
    "                 Windows error code\n"
    "@\n"
    "Data is written to standard output, everything else to standard error. Columns are\n"
    "separated by tabs; in listed texts \\n, \\t and \\\\ mean line break, tab and backslash.\n"
    "Listings of Unicode catalogs are in UTF-8 on every system. A message printed by -id is\n"
    "in the code page of the process, as programs see it. A number is decimal or, after 0x,\n"
    "hexadecimal. --help and --version take precedence over all other arguments.\n"
    "Exit codes: 0 success, 1 not found or different, 2 catalog not loaded, 3 output not\n"
    "written, 200 out of memory, 201 to 204 errors in the command line.",
    "The message catalog could not be loaded",
    "A number is expected",
    "This number has no name",
    "Unexpected argument",
    "Exactly one of -list, -langs, -id, -diff and -error must be given",
    "-cat and -builtin cannot be combined",
    "A message catalog is required: -cat or -builtin",
    "-lang requires -list",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velmsg
