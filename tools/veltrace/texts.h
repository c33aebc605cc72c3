// The texts of veltrace as a string table. Their ids are the indexes.
#pragma once

#include "tools/string_table.h"

namespace vel::veltrace {

enum TextId : unsigned long {
  kTitle = 2,
  kDescription,
  kUsage,
  kHelp,
  kNotOpened,
  kNotRead,
  kDamaged,
  kIncomplete,
  kSkipped,
  kRestarted,
  kNotWritten,
  kFormatExpected,
  kDetailExpected,
  kNumbersExpected,
  kTimeExpected,
  kCountExpected,
  kColorExpected,
  kInvalidPattern,
  kInvalidBytes,
  kStatsAlone,
  kFollowFile,
  kStandardInputName,
  kTextEnd
};

inline constexpr const char* kUsageText =
    "[(-format <text|json|csv|chrome>)] [-stats] [-recover]\n"
    "[-follow] [(-timeout <seconds>)]\n"
    "[(-process <numbers>)] [(-thread <numbers>)]\n"
    "[(-component <numbers>)] [(-detail <OFF|LOW|MED|HIGH>)]\n"
    "[(-function <pattern>)] [(-message <pattern>)]\n"
    "[(-data <bytes>)] [(-from <time>)] [(-to <time>)]\n"
    "[(-longer <milliseconds>)] [(-context <count>)]\n"
    "[-nodump] [(-color <auto|always|never>)] [<file> ...]";

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 24",
    "[VELTRACE]",
    "Trace viewer",
    "shows, filters, merges and counts the records of traces",
    kUsageText,
    "-format <form>      text (the default), json: an object per line, csv: comma-separated values,\n"
    "                    chrome: for Perfetto and the trace viewer of Chrome\n"
    "-stats              show statistics instead of records: by process, thread, component, detail\n"
    "                    and type, over time, and the calls of each function\n"
    "-recover            skip damaged bytes and go on; each place is reported\n"
    "-follow             wait for more at the end. The file may appear late, be truncated or replaced\n"
    "-timeout <seconds>  with -follow: end if nothing has come for this time\n"
    "-process <numbers>  only these processes, such as 4711 or 1,5-9\n"
    "-thread <numbers>   only these threads\n"
    "-component <numbers>\n"
    "                    only these components, 0 to 255\n"
    "-detail <detail>    only records up to this detail; the default is HIGH\n"
    "-function <pattern>\n"
    "                    only these functions: a name, a pattern with * and ?, or a regular expression\n"
    "                    between slashes, such as /^(open|close)/\n"
    "-message <pattern>  only these messages\n"
    "-data <bytes>       only data that contains these bytes; \\x00 is a byte, \\\\ a backslash\n"
    "-from <time>        only from this time on, in seconds as shown, such as 1000.250\n"
    "-to <time>          only up to this time\n"
    "-longer <milliseconds>\n"
    "                    only the ends of calls that took longer\n"
    "-context <count>    show this many records before and after each one as well\n"
    "-nodump             text: leave out the dumps of data\n"
    "-color <when>       text: colour the functions. auto (the default) colours on terminals unless\n"
    "                    NO_COLOR is set; always; never\n"
    "<file> ...          traces; several are merged by time. - is standard input, which is also the\n"
    "                    default\n"
    "@\n"
    "Text has the columns time (seconds), process, thread, detail, component and event. Events are\n"
    "indented by the calls of their thread; > begins a call, < ends one. Control characters are shown\n"
    "as \\x1B. Results are on standard output, everything else is on standard error.\n"
    "Exit codes: 0 success, 1 a file could not be read, 2 a trace is damaged or incomplete, 3 output\n"
    "could not be written, 200 out of memory, 201 to 204 errors in the command line.",
    "The file could not be opened",
    "The file could not be read to its end",
    "The trace is damaged at this offset (-recover skips the damage)",
    "The trace ends within the record at this offset",
    "Bytes skipped, and their offset",
    "The file was truncated or replaced",
    "The output could not be written",
    "-format must be text, json, csv or chrome",
    "-detail must be OFF, LOW, MED or HIGH",
    "A list of numbers is expected, such as 1,5-9; this one is invalid at position",
    "A time in seconds is expected, such as 1000.250; this one is invalid at position",
    "A number is expected; this one is invalid at position",
    "-color must be auto, always or never",
    "The regular expression is invalid at position",
    "The bytes are invalid at position",
    "-stats cannot be combined with -format, -context or -follow",
    "-timeout requires -follow, and -follow requires a file",
    "standard input",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::veltrace
