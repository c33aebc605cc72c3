// The texts of veldump as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::veldump {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kNotOpened,
  kNotRead,
  kNotWritten,
  kNumberExpected,
  kWidthExpected,
  kReverseAlone,
  kLimitBelongs,
  kNoDumpLine,
  kBeyondLimit,
  kStandardInputName,
  kTextEnd
};

inline constexpr const char* kUsageText =
    "[-bin] [(-offset <number>)] [(-length <number>)]\n"
    "[(-width <bytes>)] [-squeeze] [-reverse] [(-limit <bytes>)]\n"
    "[<file> ...]";

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 16",
    "[VELDUMP]",
    "Hexadecimal and binary dump",
    "shows the bytes of files, and converts dumps back to bytes",
    kUsageText,
    "-bin              binary digits, 8 bytes per line, instead of hexadecimal, 16 per line\n"
    "-offset <number>  start at this offset; decimal, or hexadecimal after 0x\n"
    "-length <number>  show at most this many bytes\n"
    "-width <bytes>    size of an element, 1, 2, 4 or 8: offset and length then count elements.\n"
    "                  The lines do not change; they show bytes in the order of the file\n"
    "-squeeze          show a line \"*\" for all lines that repeat the line before them;\n"
    "                  the last line is always shown\n"
    "-reverse          convert a dump back to bytes, using the address and the digits of its\n"
    "                  lines. The bytes before the first address are not written\n"
    "-limit <bytes>    with -reverse: the maximum number of bytes that all lines \"*\" may\n"
    "                  expand to; default 1073741824 (1 GiB)\n"
    "<file> ...        files to dump; several get headings. - is standard input, which is also\n"
    "                  the default\n"
    "@\n"
    "Addresses are offsets in bytes. In a line, \"__\" marks a byte that the line does not have,\n"
    "and \".\" replaces a byte that is not a printable ASCII character.\n"
    "Dumps are written to standard output, everything else to standard error.\n"
    "Exit codes: 0 success, 1 a file could not be read or is not a dump, 2 output could not\n"
    "be written, 3 lines \"*\" expand to more bytes than -limit allows, 200 out of memory,\n"
    "201 to 204 errors in the command line.",
    "The file could not be opened",
    "The file could not be read to its end",
    "The output could not be written",
    "A number is expected",
    "The width must be 1, 2, 4 or 8",
    "-reverse can be combined only with -limit and file names",
    "-limit requires -reverse",
    "This line is not part of a dump, or does not follow the line before it",
    "The lines \"*\" expand to more bytes than -limit allows",
    "standard input",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::veldump
