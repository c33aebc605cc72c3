// Parses a value up to its comment. A value is a sequence of parts, and their texts are concatenated:
//
//   dir = $(HOME)/"my files; all" '\t' end ; where they are
//
//   $(NAME)     a variable of the environment; without one of that name the part is empty
//   "string"    escapes are resolved, and ";" has no meaning
//   'c'         one character, which may be an escape
//   otherwise   plain text; white space around the whole value is trimmed, but never inside another part
//   ;           ends the value and begins the comment
//
// The buffer in OptionText bounds the result. Escapes are value_characters.cpp's work.
#include "inifile/value_parser.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "inifile/value_characters.h"
#include "platform/environment.h"

namespace vel::inifile {

namespace {

/// The characters that end plain text. Most bytes of a file are tested, so a table look-up replaces four
/// comparisons.
constexpr auto kSpecial = [] {
  std::array<bool, 256> table{};
  for (const char c : {';', '"', '\'', '$'}) table[static_cast<unsigned char>(c)] = true;
  return table;
}();
constexpr auto isSpecial = [](char c) { return kSpecial[static_cast<unsigned char>(c)]; };

/// One pass over one line. `text_` is what is left of it.
class ValueParser {
 public:
  ValueParser(Span text, OptionText& option) noexcept
      : text_(text), option_(option), shortest_(option.valueLength()) {
    text_.skipSpace();
    raw_ = {text_.begin, text_.begin};
  }

  ValuePlace parse() {
    while (!text_.isEmpty() && *text_.begin != ';') parsePiece();
    option_.trimValue(shortest_);
    endRaw();
    Span comment = text_;
    comment.skip(1);
    comment.skipSpace();
    option_.setComment(comment);
    return {raw_, text_.begin};
  }

 private:
  /// Dispatches on the first character, of which there is one, and consumes at least that: so parse() ends.
  void parsePiece() {
    const char c = *text_.begin;
    if (c == '"') return parseProtected(&ValueParser::parseString);
    if (c == '\'') return parseProtected(&ValueParser::parseCharacter);
    if (c == '$' && text_.length() > 1 && text_.begin[1] == '(' && text_.find(')') != nullptr)
      return parseProtected(&ValueParser::parseVariable);
    parsePlain();
  }

  /// Parses a part whose text must survive trimming, white space at its end included.
  void parseProtected(void (ValueParser::*parsePart)()) {
    (this->*parsePart)();
    shortest_ = option_.valueLength();
    raw_.end = text_.begin;
  }

  void parsePlain() noexcept {
    // The search begins at the second character: the first one may be a "$" that begins no variable.
    const char* const end = std::find_if(text_.begin + 1, text_.end, isSpecial);
    option_.addToValue(text_.begin, static_cast<std::size_t>(end - text_.begin));
    text_.begin = end;
  }

  /// A string without a closing quote extends to the end of the line.
  void parseString() noexcept {
    text_.skip(1);
    while (!text_.isEmpty() && *text_.begin != '"') {
      const char* const end =
          std::find_if(text_.begin, text_.end, [](char c) { return c == '"' || c == '\\'; });
      option_.addToValue(text_.begin, static_cast<std::size_t>(end - text_.begin));
      text_.begin = end;
      if (text_.first() != '\\') continue;
      text_.skip(1);
      option_.addToValue(readEscape(text_));
    }
    text_.skip(1);
  }

  void parseCharacter() noexcept { option_.addToValue(readQuotedCharacter(text_)); }

  void parseVariable() {
    text_.skip(2);
    const Span name{text_.begin, text_.find(')')};
    text_.begin = name.end + 1;
    // The environment is queried directly, because the classes for variables cut long names: a variable with
    // the cut name is a different one.
    char terminated[kMaxLineLength + 1] = {};
    std::memcpy(terminated, name.begin, std::min(name.length(), kMaxLineLength));
    // No variable can have an empty name or one with "=".
    const bool isName = *terminated != '\0' && std::strchr(terminated, '=') == nullptr;
    const char* const value = isName ? platform::environmentValue(terminated) : nullptr;
    if (value != nullptr) option_.addToValue(value, std::strlen(value));
  }

  /// Ends the raw value after its last character that is not white space, but not within a protected part.
  void endRaw() noexcept {
    const char* end = text_.begin;
    while (end != raw_.end && isSpace(end[-1])) --end;
    raw_.end = end;
  }

  Span text_;
  OptionText& option_;
  std::size_t shortest_;  ///< trimming keeps this many characters: those of earlier lines and protected parts
  Span raw_;              ///< the value as written; the editor replaces it
};

}  // namespace

ValuePlace parseValue(Span text, OptionText& option) {
  return ValueParser(text, option).parse();
}

}  // namespace vel::inifile
