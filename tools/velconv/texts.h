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
  kNeedsIcu,
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
    "[VEL_MSGTAB_SIGNATURE] 21",
    "[VELCONV]",
    "Code page conversion",
    "converts text between code pages and loses nothing silently",
    kUsageText,
    "-from <ccsid>     code page of the source: a CCSID, such as 37, or a name, such as UTF-8;\n"
    "                  CP850 and CCSID850 mean 850\n"
    "-to <ccsid>       code page of the target\n"
    "-out <file>       write to this file instead of standard output. The file is replaced in\n"
    "                  one step at the end, and not at all if the exit code is 2; - is\n"
    "                  standard output\n"
    "-policy <policy>  how to handle a fault (ill-formed bytes, or an unmappable character):\n"
    "                  stop     end the conversion before it (default)\n"
    "                  skip     omit it\n"
    "                  replace  write the target's substitute, or a best fit\n"
    "                  escape   write \\u20AC, \\U0001F600, or \\xFF for each byte\n"
    "-count            report the number of bytes and faults of each file\n"
    "-foldnel          convert next lines (U+0085) of EBCDIC code pages to line feeds\n"
    "-list             list all CCSIDs: number, name, properties, and the routes to and from\n"
    "                  Unicode (table, algorithm, icu, system or none). If ICU, which most code\n"
    "                  pages need, is not installed, a warning says so\n"
    "<file> ...        files to convert, one after the other; - is standard input, which is\n"
    "                  also the default\n"
    "@\n"
    "The first fault of each file is reported with offset, line and column. Offsets are in\n"
    "bytes, from 0; lines and columns count from 1, columns in characters. 1250 and 1252 do\n"
    "not have the euro sign; 5346 and 5348 have it. Byte order marks are converted like other\n"
    "characters. If the owner or the permissions of the output file cannot be kept, a message\n"
    "says so and the exit code does not change.\n"
    "Exit codes: 0 success, 1 faults were replaced, skipped or escaped, 2 a file could not be\n"
    "read or written, a fault ended the conversion, or there is no conversion between the code\n"
    "pages, 200 out of memory, 201 to 204 errors in the command line.",
    "-from and -to are required",
    "Unknown CCSID",
    "The policy must be stop, skip, replace or escape",
    "-list cannot be combined with other arguments",
    "There is no conversion between these code pages",
    "Most code pages need ICU, which is not installed",
    "The file could not be opened",
    "The file could not be read to its end",
    "The output could not be written",
    "The file was written, but its owner or permissions could not be kept",
    "offset %1, line %2, column %3",
    "Invalid bytes",
    "Incomplete character at the end",
    "Unmappable character",
    "%1 bytes, %2 invalid, %3 incomplete, %4 unmappable",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velconv
