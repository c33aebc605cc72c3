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
  kNumberExpected,
  kListAlone,
  kNoWay,
  kNeedsIcu,
  kNotOpened,
  kNotRead,
  kNotWritten,
  kRightsChanged,
  kFaultPlace,
  kInvalid,
  kIncomplete,
  kNotRepresentable,
  kMoreFaults,
  kCounts,
  kTextEnd
};

inline constexpr const char* kUsageText =
    "[(-from <ccsid>)] [(-to <ccsid>)]\n"
    "[(-out <file>)] [(-policy <policy>)]\n"
    "[(-faults <number>)] [-count] [-foldnel]\n"
    "[-list] [-names] [-kernels] [<file> ...]";

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 23",
    "[VELCONV]",
    "Code page conversion",
    "converts text between code pages and loses nothing silently",
    kUsageText,
    "-from <ccsid>     code page of the source: a CCSID, such as 37 or CCSID37, or a name, such as\n"
    "                  latin1, UTF-8 or windows-1252. Case and punctuation do not matter\n"
    "-to <ccsid>       code page of the target\n"
    "-out <file>       write to this file instead of standard output. The file is replaced in\n"
    "                  one step at the end, and not at all if the exit code is 2; - is\n"
    "                  standard output\n"
    "-policy <policy>  how to handle a fault (ill-formed bytes, or an unmappable character):\n"
    "                  stop     end the conversion before it (default)\n"
    "                  skip     omit it\n"
    "                  replace  write the target's substitute, or a best fit\n"
    "                  escape   write \\u20AC, \\U0001F600, or \\xFF for each byte\n"
    "-faults <number>  report up to this many faults of each file, instead of only the first,\n"
    "                  and how many more there are\n"
    "-count            report the number of bytes and faults of each file\n"
    "-foldnel          convert next lines (U+0085) of EBCDIC code pages to line feeds\n"
    "-list             list all CCSIDs: number, name, properties, the routes to and from Unicode\n"
    "                  (table, algorithm, icu, system or none), and the names that -from and -to\n"
    "                  know. If ICU, which most code pages need, is not installed, a warning\n"
    "                  says so\n"
    "-names            list these names and the numbers, each with its CCSID\n"
    "-kernels          show the vector instructions that conversions use: avx512, avx2, sse4 or\n"
    "                  portable. The environment variable VEL_KERNELS can select a lower one\n"
    "<file> ...        files to convert, one after the other; - is standard input, which is\n"
    "                  also the default\n"
    "@\n"
    "Faults are reported with offset, line and column. Offsets are in bytes, from 0; lines and\n"
    "columns count from 1, columns in characters. The names CP1250 to CP1258 mean the code\n"
    "pages of Windows, 5346 and so on, which have the euro sign; the CCSIDs 1250 to 1258 do\n"
    "not have it. Byte order marks are converted like other characters. If the owner or the\n"
    "permissions of the output file cannot be kept, a message says so and the exit code does\n"
    "not change.\n"
    "Exit codes: 0 success, 1 faults were replaced, skipped or escaped, 2 a file could not be\n"
    "read or written, a fault ended the conversion, or there is no conversion between the code\n"
    "pages, 200 out of memory, 201 to 204 errors in the command line.",
    "-from and -to are required",
    "Unknown CCSID",
    "The policy must be stop, skip, replace or escape",
    "A number is expected",
    "-list, -names and -kernels cannot be combined with other arguments",
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
    "Further faults",
    "%1 bytes, %2 invalid, %3 incomplete, %4 unmappable",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velconv
