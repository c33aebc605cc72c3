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
  kStrayArgument,
  kOneTask,
  kOneSource,
  kNoSource,
  kLanguageOfList,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 14",
    "[VELMSG]",
    "Message catalog inspector",
    "shows what a message catalog holds",
    "[(-cat <file>)] [-builtin]\n"
    "[-list] [(-lang <number>)] [-langs]\n"
    "[(-id <id>) [(-var <text>) [<text> ...]]]\n"
    "[(-diff <file>)] [(-error <number>)]",
    "-cat <file>      message catalog; its extension is replaced by .DLL\n"
    "-builtin         the library's built-in messages instead of a catalog\n"
    "-list            every message: id, language number, text\n"
    "-lang <number>   list this language only, for example 1031\n"
    "-langs           the catalog's languages: language number, number of messages\n"
    "-id <id>         one message in the user's language\n"
    "-var <text> ...  its variables, up to ten; missing ones show as ???\n"
    "-diff <file>     compare with a second catalog: ids that are only in the first (<)\n"
    "                 or in the second (>), and ids whose inserts differ (!)\n"
    "-error <number>  the names of an error number, and of the platform's error code\n"
    "@\n"
    "Data goes to standard output, everything else to standard error. Columns are\n"
    "separated by tabs; in listed texts \\n, \\t and \\\\ stand for line break, tab and\n"
    "backslash. Listings of Unicode catalogs are in UTF-8 on every system, a message\n"
    "by -id is in the process's code page, as programs see it. A number is decimal or,\n"
    "after 0x, hexadecimal. --help and --version are answered before anything else.\n"
    "Exit codes: 0 success, 1 not found or different, 2 catalog not loaded, 3 output not\n"
    "written, 200 out of memory, 201 to 204 faults of the command line.",
    "The message catalog could not be loaded",
    "A number is expected",
    "No name is known for this number",
    "This argument belongs to no switch",
    "Exactly one of -list, -langs, -id, -diff and -error must be given",
    "Only one of -cat and -builtin can be given",
    "A message catalog is needed: -cat or -builtin",
    "-lang goes with -list only",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velmsg
