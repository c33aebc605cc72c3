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
  kUnknownCodePage,
  kColorExpected,
  kReverseAlone,
  kTwoFiles,
  kLimitBelongs,
  kNoDumpLine,
  kBeyondLimit,
  kReversedGroups,
  kStandardInputName,
  kTextEnd
};

inline constexpr const char* kUsageText =
    "[-bin] [(-offset <number>)] [(-length <number>)]\n"
    "[(-width <bytes>)] [-squeeze] [(-codepage <page>)]\n"
    "[(-color <auto|always|never>)] [-compare] [-reverse]\n"
    "[(-limit <bytes>)] [<file> ...]";

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 20",
    "[VELDUMP]",
    "Hexadecimal and binary dump",
    "shows and compares the bytes of files, and converts dumps back to bytes",
    kUsageText,
    "-bin              binary digits, 8 bytes per line, instead of hexadecimal, 16 per line\n"
    "-offset <number>  start at this offset; decimal, or hexadecimal after 0x. -16 is 16 before\n"
    "                  the end\n"
    "-length <number>  show at most this many bytes\n"
    "-width <bytes>    size of an element, 1, 2, 4 or 8: offset and length then count elements.\n"
    "                  The lines do not change; they show bytes in the order of the file\n"
    "-squeeze          show a line \"*\" for all lines that repeat the line before them;\n"
    "                  the last line is always shown\n"
    "-codepage <page>  show the characters of this code page, in UTF-8: a CCSID, such as 37, or\n"
    "                  a name, such as latin1. Every byte is shown by itself\n"
    "-color <when>     colour the bytes by their kind: zeros, blanks, printable characters,\n"
    "                  controls, others; with -compare, colour those that differ. auto (the\n"
    "                  default) colours on terminals unless NO_COLOR is set; always; never\n"
    "-compare          compare two files: show the lines that differ, after < those of the\n"
    "                  first and after > those of the second\n"
    "-reverse          convert a dump back to bytes, using the address and the digits of its\n"
    "                  lines. The bytes before the first address are not written. Dumps of xxd\n"
    "                  (but not those of xxd -e) and hexdump -C are converted, too\n"
    "-limit <bytes>    with -reverse: the maximum number of bytes that all lines \"*\" may\n"
    "                  expand to; default 1073741824 (1 GiB)\n"
    "<file> ...        files to dump; several get headings. - is standard input, which is also\n"
    "                  the default\n"
    "@\n"
    "Addresses are offsets in bytes. In a line, \"__\" marks a byte that the line does not have,\n"
    "and \".\" replaces a byte that is not a printable character.\n"
    "Dumps are written to standard output, everything else to standard error.\n"
    "Exit codes: 0 success, 1 a file could not be read or is not a dump, or the compared files\n"
    "differ, 2 output could not be written, 3 lines \"*\" expand to more bytes than -limit\n"
    "allows, 4 a file could not be read to compare it, 200 out of memory, 201 to 204 errors in\n"
    "the command line.",
    "The file could not be opened",
    "The file could not be read to its end",
    "The output could not be written",
    "A number is expected",
    "The width must be 1, 2, 4 or 8",
    "There is no conversion from this code page",
    "-color must be auto, always or never",
    "-reverse can be combined only with -limit and file names",
    "-compare requires exactly two files and cannot be combined with -squeeze",
    "-limit requires -reverse",
    "This line is not part of a dump, or does not follow the line before it",
    "The lines \"*\" expand to more bytes than -limit allows",
    "This line has little-endian groups, as xxd -e writes them; they cannot be converted back",
    "standard input",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::veldump
