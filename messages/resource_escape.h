// The escapes in the texts of catalog libraries, for insert_formatter.cpp, which expands them, and for the
// check of message sources, which warns of those that programs cannot show.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "messages/text_reader_writer.h"

namespace vel::messages {

/// The print style of an insert: "%1!-8.3s!" is left-aligned, with width 8 and precision 3.
struct InsertStyle {
  bool leftAligned = false;
  bool zeroFilled = false;
  std::size_t width = 0;
  std::size_t precision = std::numeric_limits<std::size_t>::max();
};

/// A percent sign and what belongs to it.
struct ResourceEscape {
  enum class Kind {
    Character,
    LineBreak,
    End,  ///< of the message
    Insert,
    Malformed  ///< the text ends before the escape does
  };

  Kind kind;
  char character = '\0';     ///< of Character
  std::uint32_t number = 0;  ///< of the insert, 1 to 99
  bool hasStyle = false;
  bool isText = true;  ///< false if the style is not that of a string; `style` is then the default one
  InsertStyle style = {};
  TextReader styleText{nullptr, 0};  ///< between the exclamation marks
};

/// Consumes one of printf's flags. Returns false if no flag follows. Flags for numbers are accepted and
/// ignored.
inline bool parseFlag(TextReader& text, InsertStyle& style) noexcept {
  if (text.consumeIf('-')) return style.leftAligned = true;
  if (text.consumeIf('0')) return style.zeroFilled = true;
  return text.consumeIf('+') || text.consumeIf(' ') || text.consumeIf('#');
}

/// Parses the text between the "!" of a print style. Returns false for everything but a string conversion:
/// any other one would make printf read a number, or an address from which to read.
inline bool parseStyle(TextReader text, InsertStyle& style) noexcept {
  while (parseFlag(text, style)) {
  }
  style.width = text.parseNumber();
  if (text.consumeIf('.')) style.precision = text.parseNumber();
  text.consumeIf('h');
  return text.consumeIf('s') && text.atEnd();
}

/// Consumes an insert after its first digit, which is not 0: "%0" ends the text, also in "%01".
inline ResourceEscape readInsert(TextReader& text, char firstDigit) noexcept {
  ResourceEscape insert{.kind = ResourceEscape::Kind::Insert};
  insert.number = appendDigit(std::uint32_t{0}, firstDigit);
  if (text.atDigit()) insert.number = appendDigit(insert.number, text.read());
  if (!text.consumeIf('!')) return insert;
  insert.hasStyle = true;
  if (!text.readUntil('!', insert.styleText)) {
    insert.kind = ResourceEscape::Kind::Malformed;
  } else if (!parseStyle(insert.styleText, insert.style)) {
    insert.isText = false;
    insert.style = {};
  }
  return insert;
}

/// Consumes an escape after its percent sign.
inline ResourceEscape readResourceEscape(TextReader& text) noexcept {
  using Kind = ResourceEscape::Kind;
  if (text.atEnd()) return {.kind = Kind::Malformed};
  const char c = text.read();
  switch (c) {
    case '0':
      return {.kind = Kind::End};
    case 'n':
      return {.kind = Kind::LineBreak};
    case 'r':
      return {.kind = Kind::Character, .character = '\r'};
    case 't':
      return {.kind = Kind::Character, .character = '\t'};
    case 'b':
      return {.kind = Kind::Character, .character = ' '};
    default:
      if (isAsciiDigit(c)) return readInsert(text, c);
      return {.kind = Kind::Character, .character = c};
  }
}

}  // namespace vel::messages
