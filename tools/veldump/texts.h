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
    "shows the bytes of files, and turns dumps back into bytes",
    kUsageText,
    "-bin              binary digits, 8 bytes a line, instead of hexadecimal, 16 a line\n"
    "-offset <number>  begin there; decimal, or hexadecimal with 0x\n"
    "-length <number>  show at most as many\n"
    "-width <bytes>    size of an element, 1, 2, 4 or 8: offset and length count elements.\n"
    "                  The lines look the same: bytes in the order of the file\n"
    "-squeeze          a line \"*\" stands for all lines that repeat the one before;\n"
    "                  the last line is always shown\n"
    "-reverse          write the bytes that a dump shows; of its lines address and digits\n"
    "                  count. The first address is where the bytes begin\n"
    "-limit <bytes>    with -reverse: how many bytes all lines \"*\" may stand for together;\n"
    "                  1073741824 (1 GiB) unless given\n"
    "<file> ...        standard input without one; several get headings\n"
    "@\n"
    "Addresses are the bytes' offsets in their file. \"__\" stands where a line has no byte,\n"
    "\".\" for a byte without a printable ASCII character.\n"
    "Dumps go to standard output, everything else to standard error.\n"
    "Exit codes: 0 success, 1 a file could not be read or is no dump, 2 output could not\n"
    "be written, 3 lines \"*\" stand for more bytes than -limit allows, 200 out of memory,\n"
    "201 to 204 faults of the command line.",
    "The file could not be opened",
    "The file could not be read to its end",
    "The output could not be written",
    "A number is expected",
    "The width must be 1, 2, 4 or 8",
    "Beside -reverse only -limit and file names can be given",
    "-limit is for -reverse only",
    "This is no line of a dump, or does not follow the line before it",
    "The lines \"*\" stand for more bytes than -limit allows",
    "standard input",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::veldump
