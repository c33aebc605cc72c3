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
  kIllFormedSource,
  kNoConversion,
  kUnknownStatement,
  kEqualsExpected,
  kListExpected,
  kListNotClosed,
  kNameAndNumberExpected,
  kNumberTooLarge,
  kNameDeclaredTwice,
  kWrongOutputBase,
  kMessageIdExpected,
  kUnknownSeverity,
  kUnknownFacility,
  kUnknownLanguage,
  kLineEndExpected,
  kLanguageUsedTwice,
  kTextNotEnded,
  kNulInText,
  kMessageWithoutText,
  kNumberUsedTwice,
  kSymbolUsedTwice,
  kNotInTable,
  kInsertNotInTable,
  kNoMessages,
  kCatalogTooLarge,
  kNotInCodepage,
  kTextTooLong,
  kMoreFaults,
  kSourceNotRead,
  kOutputNotWritten,
  kRightsChanged,
  kOutputRequired,
  kUnknownCcsid,
  kPoKeywordExpected,
  kPoStringNotEnded,
  kPoWrongEscape,
  kPoPlural,
  kPoIncomplete,
  kPoIllFormedText,
  kPoUnknownCharset,
  kPoUnknownContext,
  kPoRepeatedContext,
  kPoChangedText,
  kPoUnusableText,
  kPoUnknownLanguage,
  kPoOtherLanguage,
  kPoLanguageNumber,
  kNoTranslation,
  kUnusedLanguage,
  kDifferentInserts,
  kDifferentEnds,
  kDifferentBreaks,
  kExpandedTooLong,
  kEmptyText,
  kEscapeNotEnded,
  kInsertNotText,
  kInsertAboveMaximum,
  kUnknownEscape,
  kTextAfterEnd,
  kControlCharacter,
  kMessageZero,
  kNotForTask,
  kOutputIsInput,
  kOutputTwice,
  kCatalogToTerminal,
  kAnsiCodepage,
  kFunctionTwice,
  kSourcesOnly,
  kSourceFileRequired,
  kLangRequired,
  kOnlyForPo,
  kUnknownForm,
  kPoFileRequired,
  kTextEnd
};

inline constexpr const char* kTexts[] = {
    "[VEL_MSGTAB_SIGNATURE] 86",
    "[VELMSG]",
    "Message catalog inspector",
    "shows the contents of a message catalog",
    "[(-cat <file>)] [-builtin]\n"
    "[-list] [(-lang <number>)] [-langs]\n"
    "[(-id <id>) [(-var <text>) [<text> ...]]]\n"
    "[(-diff <file>)] [(-error <number>)]\n"
    "[(-compile <source>) [<source> ...]]\n"
    "[(-out <file>)] [(-header <file>)] [(-table <file>)]\n"
    "[(-functions <file>)]\n"
    "[(-codepage <ccsid>)] [(-ansi <ccsid>)]\n"
    "[(-languages <name>) [<name> ...]]\n"
    "[(-export <po|tsv|json>)] [(-import <po>)] [-check] [<file> ...]\n"
    "[(-reference <number>)] [(-merge <file>)] [-fuzzy]",
    "-cat <file>      the message catalog, with or without directory; the extension is replaced\n"
    "                 by .DLL. If there is no such library, the file itself: any DLL, program\n"
    "                 or .mui file with a message table. For a library without one, the .mui\n"
    "                 file of the user's language or of en-US, such as en-US\\a.dll.mui.\n"
    "                 - is standard input\n"
    "-builtin         the library's built-in messages instead of a catalog\n"
    "-list            list every message: id, language number, text\n"
    "-lang <number>   list or export only this language, for example 1031, write -table in it,\n"
    "                 or import into it\n"
    "-langs           list the languages of the catalog: language number, number of messages\n"
    "-id <id>         print one message in the user's language\n"
    "-var <text> ...  the inserts of the message, up to ten; missing ones show as ???\n"
    "-diff <file>     compare with a second catalog: ids that are only in the first (<)\n"
    "                 or only in the second (>), and ids whose inserts differ (!); - is\n"
    "                 standard input. Without -cat and -builtin, compare the source <file>\n"
    "                 with the sources after it: the same signs, for each language, ~ for\n"
    "                 other words, and @ for other symbolic names\n"
    "-error <number>  print all names of a number: identifier, class, severity, action, and\n"
    "                 Windows error code\n"
    "-compile <source> ...  compile message sources to one catalog; - is standard input\n"
    "-out <file>      the catalog to write, a resource-only DLL for 64 bits; for -export and\n"
    "                 -import the file to write instead of standard output, which is -\n"
    "-header <file>   write a C header with a macro for each symbolic name\n"
    "-table <file>    write a C++ file with the texts as a string table, in the language of\n"
    "                 -lang, or in English\n"
    "-functions <file>  write a C++ header with a function for each symbolic name, which has a\n"
    "                 parameter for each insert\n"
    "-codepage <ccsid>  code page of sources without byte order mark; UTF-8 by default\n"
    "-ansi <ccsid>    store texts in this code page instead of UTF-16\n"
    "-languages <name> ...  compile only these languages, by their names or numbers\n"
    "-export <po|tsv|json>  write sources for translators (po, in the language -lang), or\n"
    "                 sources or a catalog for scripts\n"
    "-import <po>     write the source with the translations of the .po files after it;\n"
    "                 reports what cannot be used\n"
    "-check           report what is missing or wrong in sources: translations, inserts,\n"
    "                 escapes, lengths\n"
    "<file> ...       message sources for -export, -import, -check and -diff; - is standard input\n"
    "-reference <number>  the language that is translated; by default that of the first text\n"
    "-merge <file>    keep what an older .po file has and the sources do not: comments,\n"
    "                 fuzzy and new texts, entries of removed messages\n"
    "-fuzzy           import fuzzy texts, too\n"
    "@\n"
    "Data is written to standard output, everything else to standard error. Columns are\n"
    "separated by tabs; in listed texts \\n, \\t and \\\\ mean line break, tab and backslash.\n"
    "Listings of Unicode catalogs are in UTF-8 on every system. A message printed by -id is\n"
    "in the code page of the process, as programs see it. A number is decimal or, after 0x,\n"
    "hexadecimal. --help and --version take precedence over all other arguments.\n"
    "Exit codes: 0 success, 1 not found, different, or findings in a source, 2 file not read,\n"
    "3 output not written, 200 out of memory, 201 to 204 errors in the command line.",
    "The message catalog could not be loaded",
    "A number is expected",
    "This number has no name",
    "Unexpected argument",
    "Exactly one of -list, -langs, -id, -diff, -error, -compile, -export, -import and -check must be given",
    "-cat and -builtin cannot be combined",
    "A message catalog is required: -cat or -builtin",
    "The source is ill-formed in its code page at these bytes",
    "There is no conversion for the code page",
    "Unknown statement",
    "A \"=\" is expected",
    "A \"(\" is expected",
    "The \")\" of the list is missing",
    "A name, \"=\" and a number are expected",
    "The number is too large",
    "The name is already declared with another number",
    "OutputBase must be 10 or 16",
    "A MessageId statement is expected before",
    "Unknown severity",
    "Unknown facility",
    "Unknown language",
    "The end of the line is expected",
    "The message already has a text in this language",
    "The text is not ended by a line with a single full stop",
    "The text contains a NUL",
    "The message has no text",
    "The number of the message is already used",
    "The symbolic name is already used",
    "A string table cannot hold a message of this number",
    "A string table cannot hold an insert of this form",
    "The sources have no messages",
    "The catalog would be larger than 64 MB or have too many languages",
    "The text has a character that the code page of the catalog does not have",
    "The text is longer than a catalog can hold",
    "Further faults",
    "The file could not be read",
    "The output could not be written",
    "The file was written, but its owner or permissions could not be kept",
    "-compile requires -out, -header, -table or -functions",
    "Unknown CCSID",
    "msgctxt, msgid, msgstr or a string is expected",
    "The string is not ended in its line",
    "Unknown escape sequence",
    "Messages have no plural forms",
    "The entry is not complete",
    "The entry is not well-formed UTF-8",
    "Unknown charset",
    "The sources have no message with this context",
    "The context occurs a second time",
    "The msgid is not the text of the source",
    "A message cannot have this text",
    "The language of the file is unknown; give it with -lang",
    "The file is of another language",
    "X-Language-Number must be a number from 1 to 65535",
    "There is no text in this language",
    "No message has a text in this language",
    "The inserts differ",
    "Only one of the texts ends with %%0",
    "Only one of the texts begins or ends with an empty line",
    "The message is longer than programs can load",
    "An empty message counts as missing",
    "The escape is not complete, so programs cannot load the message",
    "An insert that is not a string is shown as ???",
    "There are ten inserts; this one is shown as ???",
    "The percent sign is not shown here",
    "Text after %%0 is not shown",
    "The text has a control character",
    "Programs cannot load a message of the number 0",
    "This switch is not for the task",
    "The output would replace the input",
    "Two outputs have the same name",
    "A catalog is not written to a terminal",
    "-ansi requires a single-byte or multi-byte code page based on ASCII, such as 1252",
    "Another message gives the same function",
    "This is possible for message sources only, not for catalogs",
    "A message source is required",
    "-export po requires -lang",
    "-merge and -reference require -export po, -import or -check",
    "Unknown form",
    "A .po file is required",
};
static_assert(tools::isStringTable(kTexts, kTextEnd));

}  // namespace vel::velmsg
