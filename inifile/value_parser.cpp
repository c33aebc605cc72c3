// Reads a value: plain text, quoted strings, character literals and variables, up to its comment.
#include "inifile/value_parser.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "inifile/value_characters.h"
#include "platform/platform.h"

namespace vel::inifile {

namespace {

/// Most of a file's bytes pass through this question.
constexpr auto kSpecial = [] {
  std::array<bool, 256> table{};
  for (const char c : {';', '"', '\'', '$'}) table[static_cast<unsigned char>(c)] = true;
  return table;
}();
constexpr auto isSpecial = [](char c) { return kSpecial[static_cast<unsigned char>(c)]; };

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
  void parsePiece() {
    const char c = *text_.begin;
    if (c == '"') return parseProtected(&ValueParser::parseString);
    if (c == '\'') return parseProtected(&ValueParser::parseCharacter);
    if (c == '$' && text_.length() > 1 && text_.begin[1] == '(' && text_.find(')') != nullptr)
      return parseProtected(&ValueParser::parseVariable);
    parsePlain();
  }

  /// What a piece gives is not trimmed.
  void parseProtected(void (ValueParser::*parsePart)()) {
    (this->*parsePart)();
    shortest_ = option_.valueLength();
    raw_.end = text_.begin;
  }

  void parsePlain() noexcept {
    const char* const end = std::find_if(text_.begin + 1, text_.end, isSpecial);
    option_.addToValue(text_.begin, static_cast<std::size_t>(end - text_.begin));
    text_.begin = end;
  }

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
    // A name longer than the variables' classes hold is one all the same.
    char terminated[kMaxLineLength + 1] = {};
    std::memcpy(terminated, name.begin, std::min(name.length(), kMaxLineLength));
    const bool isName = *terminated != '\0' && std::strchr(terminated, '=') == nullptr;
    const char* const value = isName ? platform::environmentValue(terminated) : nullptr;
    if (value != nullptr) option_.addToValue(value, std::strlen(value));
  }

  /// Behind the last character that is no white space, or the last protected piece.
  void endRaw() noexcept {
    const char* end = text_.begin;
    while (end != raw_.end && isSpace(end[-1])) --end;
    raw_.end = end;
  }

  Span text_;
  OptionText& option_;
  std::size_t shortest_;  ///< what trimming leaves of the value
  Span raw_;
};

}  // namespace

ValuePlace parseValue(Span text, OptionText& option) {
  return ValueParser(text, option).parse();
}

}  // namespace vel::inifile
