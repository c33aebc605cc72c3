// What a text of a message source becomes when a program shows it.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vel::velmsg {

/// The inserts of a text: the conversions of printf for each number, "s" for a string. Width, precision and
/// flags are a matter of the language, and so is how often an insert occurs.
using SourceInserts = std::map<unsigned, std::set<std::string>>;

/// A text of the model after its escapes have been read. Offsets are in the text, those of the first of a
/// kind.
struct SourceTextFacts {
  SourceInserts inserts;
  std::size_t length = 0;       ///< in bytes of UTF-8 when expanded, with inserts as short as they can be
  std::size_t storedUnits = 0;  ///< of UTF-16 in the catalog, without the NUL
  bool hasEnd = false;          ///< "%0"
  std::optional<std::size_t> malformed;     ///< an escape that has no end: programs cannot load the message
  std::optional<std::size_t> number;        ///< an insert for a number, which no program can pass
  std::optional<std::size_t> aboveMaximum;  ///< an insert after the last one that programs can pass
  std::optional<std::size_t> unknown;       ///< a percent sign before any other character, which is not shown
  std::optional<std::size_t> afterEnd;      ///< text after "%0", which is not shown
  std::optional<std::size_t> control;       ///< a control character other than a tab or line break
};

/// An entry of a catalog has a length of 16 bits, in bytes, a multiple of 4, with a header of 4 bytes and a
/// NUL.
inline constexpr std::size_t kMaxStoredUnits = (0xFFFC - 4) / 2 - 1;

/// Returns false for tab and line feed.
constexpr bool isControlCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte < ' ' && c != '\t' && c != '\n') || byte == 0x7F;
}

/// Takes time linear in the size of the text.
SourceTextFacts readSourceText(std::string_view text);

/// Returns inserts as in a text, such as "%1 %2!d!", or "-" if there are none.
std::string insertsText(const SourceInserts& inserts);

}  // namespace vel::velmsg
