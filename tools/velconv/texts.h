// The texts of velconv as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::velconv {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kBothNeeded,
  kUnknownCcsid,
  kUnknownPolicy,
  kListAlone,
  kNoWay,
  kNotOpened,
  kNotRead,
  kNotWritten,
  kRightsChanged,
  kFirstFault,
  kInvalid,
  kIncomplete,
  kNotRepresentable,
  kCounts,
  kTextEnd
};

inline constexpr const char* kUsageText =
    "[(-from <ccsid>)] [(-to <ccsid>)]\n"
    "[(-out <file>)] [(-policy <policy>)]\n"
    "[-count] [-foldnel] [-list] [<file> ...]";

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 20",
    "[VELCONV]",
    "Code page conversion",
    "converts text between code pages and loses nothing silently",
    kUsageText,
    "-from <ccsid>     code page of the source: a CCSID, such as 37, or a name, such as UTF-8;\n"
    "                  CP850 and CCSID850 are 850\n"
    "-to <ccsid>       code page of the target\n"
    "-out <file>       write there; the file is replaced in one step, at the end, and not at\n"
    "                  all when the exit code is 2. Standard output without it, or for -\n"
    "-policy <policy>  what becomes of a fault, that is of bytes that are no character and of\n"
    "                  characters that the target lacks:\n"
    "                  stop     end before it (as it is at first)\n"
    "                  skip     leave it out\n"
    "                  replace  write the target's substitute, or a best fit\n"
    "                  escape   write \\u20AC, \\U0001F600, or \\xFF for bytes\n"
    "-count            say how many bytes and faults there were, for each file\n"
    "-foldnel          next lines (U+0085) of EBCDIC pages become line feeds\n"
    "-list             all CCSIDs with number, name, properties, and the ways to and from\n"
    "                  Unicode: table, algorithm, icu, system or none\n"
    "<file> ...        converted one after the other; - is standard input, as it is without one\n"
    "@\n"
    "The first fault of each file is shown as offset, line and column. Offsets are bytes from\n"
    "0, lines and columns count from 1, columns in characters. 1250 and 1252 are without the\n"
    "euro sign, which 5346 and 5348 have. Byte order marks count as characters.\n"
    "When the file's owner or permissions cannot be kept, a message says so and the exit code\n"
    "stays.\n"
    "Exit codes: 0 success, 1 something was replaced, skipped or escaped, 2 a file could not\n"
    "be read or written, a fault ended the conversion, or there is no way between the code\n"
    "pages, 200 out of memory, 201 to 204 faults of the command line.",
    "-from and -to are needed",
    "This is no CCSID",
    "The policy is none of stop, skip, replace and escape",
    "Beside -list nothing else can be given",
    "There is no way between these code pages",
    "The file could not be opened",
    "The file could not be read to its end",
    "The output could not be written",
    "The file is written, but owner or permissions could not be kept",
    "offset %1, line %2, column %3",
    "Invalid bytes",
    "Incomplete at the end",
    "Not in the target code page",
    "%1 bytes, %2 invalid, %3 incomplete, %4 not in the target code page",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velconv
