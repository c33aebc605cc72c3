// Lines of a text, and ranges of its bytes.
#pragma once

#include <string_view>

#include "inifile/text_rules.h"

namespace vel::velini {

struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool isEmpty() const { return begin == end; }
  std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
};

/// A line without its line break, which is "\n" or "\r\n", and the start of the next one.
struct Line {
  std::size_t begin;
  std::size_t end;
  std::size_t next;
};

/// Returns the line, or the rest of it, that begins at `at`.
inline Line lineAt(std::string_view text, std::size_t at) {
  const std::size_t found = text.find('\n', at);
  if (found == std::string_view::npos) return {at, text.size(), text.size()};
  return {at, found != at && text[found - 1] == '\r' ? found - 1 : found, found + 1};
}

/// Returns the position of the first character in the range that is not white space, or its end.
inline std::size_t skipBlanks(std::string_view text, Range range) {
  while (range.begin != range.end && inifile::isSpace(text[range.begin])) ++range.begin;
  return range.begin;
}

inline Range trimmed(std::string_view text, Range range) {
  range.begin = skipBlanks(text, range);
  while (range.end != range.begin && inifile::isSpace(text[range.end - 1])) --range.end;
  return range;
}

}  // namespace vel::velini
