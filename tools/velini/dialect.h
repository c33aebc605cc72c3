// The dialects of INI files that velini reads and edits, one row each. All differences between them are in
// the table; dialect_layout.cpp and dialect_values.cpp follow it.
#pragma once

#include <string>
#include <string_view>

namespace vel::velini {

/// How names are compared. Subsections: up to the first "." ignoring case, and exactly after it.
enum class Names { AnyCase, Exact, Subsections };

/// How a value continues in the next line: not at all, after a "\" at the end of a line, or if the next line
/// is indented more than the option.
enum class Continuation { None, Backslash, Indentation };

/// How a value is written: as VelClIniFile reads it, as it stands, with quotes and escapes anywhere, or as
/// strings in double quotes with escapes and in single quotes without.
enum class Values { Library, Plain, Git, Php };

struct Dialect {
  const char* name;
  const char* comments;          ///< the characters that begin a comment line; velini writes the first
  const char* separators = "=";  ///< the characters that end a name
  Names sections = Names::Exact;
  Names options = Names::Exact;
  Continuation continuation = Continuation::None;
  Values values = Values::Plain;
  const char* forbidden = "";       ///< characters that the names of options must not contain before a "["
  const char* bareValue = nullptr;  ///< the value of an option without a separator; null if there must be one
  bool hasReservedWords = false;    ///< words such as "on" are not names, and have a meaning as values
  bool hasSubsections = false;     ///< [name "subsection"], options in the line of a header, restricted names
  bool endsAtLastBracket = false;  ///< the name in a header ends at the last "]", not at the first
  bool hasOptionsBeforeSections = false;
  bool mayRepeat = false;         ///< an option may occur several times in a section, and a section in a file
  bool skipsMark = false;         ///< a byte order mark is allowed
  const char* indentation = "";   ///< of options, as velini writes them
  const char* separator = " = ";  ///< as velini writes it
};

/// The dialect of VelClIniFile, which the library reads and edits.
extern const Dialect& kLibraryDialect;

/// Returns the dialect of this name, or null.
const Dialect* dialectOf(std::string_view name);

/// Whether the character may be in a name where names are restricted: a letter, a digit or "-".
bool isNameCharacter(char c);
/// Whether an option may have this name.
bool isOptionName(const Dialect& dialect, std::string_view name);
/// Whether PHP gives a meaning to the word, in any case: on, off, true, false, yes, no, null, none.
bool isReservedWord(std::string_view word);

/// Returns a text that is equal for names that are the same.
std::string keyOf(Names names, std::string_view name);

}  // namespace vel::velini
