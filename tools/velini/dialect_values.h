// Reads and writes the values of options by the rules of a dialect.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/velini/dialect.h"
#include "tools/velini/text_lines.h"

namespace vel::velini {

struct ReadValue {
  std::string text;
  std::string comment;          ///< after the value, in its last line
  Range raw;                    ///< the value as written, without white space around it
  std::size_t next = 0;         ///< the start of the first line that does not belong to the value
  std::vector<Range> comments;  ///< comment lines between the lines of the value
  bool isMalformed = false;     ///< a string has no end, or an escape is unknown
};

bool isComment(const Dialect& dialect, char c);

/// Reads the values of a text, which is not copied.
class ValueReader {
 public:
  ValueReader(const Dialect& dialect, std::string_view text) : dialect_(dialect), text_(text) {}

  /// Reads the value that begins at `at`, after the separator. `indentation` is that of the option. Values
  /// must be read in their order.
  ReadValue read(std::size_t at, std::size_t indentation);

 private:
  const Dialect& dialect_;
  std::string_view text_;
  bool hasOpenString_ = false;  ///< no string in double quotes has an end any more
};

/// How a value that is written looks.
struct ValueStyle {
  bool isQuoted;            ///< whether the value gets quotes if the dialect has them
  bool isEvaluated;         ///< whether words and operators keep the meaning that they have for PHP
  std::string indentation;  ///< of the option, for further lines
  const char* lineEnd;
};

/// Returns the value as text for a file. A value that the dialect cannot hold reads back otherwise.
std::string writtenValue(const Dialect& dialect, std::string_view value, const ValueStyle& style);

/// Returns the text with a "\" and the name of the same index for each of the characters.
std::string withEscapes(std::string_view text, std::string_view characters, std::string_view names);

/// Returns a header without its line break.
std::string writtenHeader(const Dialect& dialect, std::string_view section);
/// Returns the text between the brackets.
std::string writtenSection(const Dialect& dialect, std::string_view section);

}  // namespace vel::velini
