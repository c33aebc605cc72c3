// Escapes and character literals in values, and values as numbers, characters and truth.
#include <cctype>
#include <charconv>
#include <cstring>
#include <limits>

#include "foundation/ascii.h"
#include "inifile/text_rules.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

namespace {

/// What each letter behind a back-slash stands for, 0 for itself.
char namedEscape(char c) noexcept {
  constexpr const char* kLetters = "abfnrtv";
  constexpr const char* kMeanings = "\a\b\f\n\r\t\v";
  const char* const found = c != '\0' ? std::strchr(kLetters, c) : nullptr;
  return found != nullptr ? kMeanings[found - kLetters] : '\0';
}

/// As many digits as follow, saturating at 31 bits, cut to a character; NUL when there is none.
char readNumber(Span& text, int base) noexcept {
  std::int32_t number = 0;
  const auto [stop, error] = std::from_chars(text.begin, text.end, number, base);
  // A sign is no digit.
  if (text.first() == '-') return '\0';
  text.begin = stop;
  if (error == std::errc::result_out_of_range) number = std::numeric_limits<std::int32_t>::max();
  return static_cast<char>(static_cast<unsigned char>(number));
}

/// As strtoul with base 10, in 32 bits.
std::uint32_t unsignedOf(const char* value) noexcept {
  while (isSpace(*value)) ++value;
  const bool isNegative = *value == '-';
  if (isNegative || *value == '+') ++value;
  std::uint32_t magnitude = 0;
  const auto [stop, error] = std::from_chars(value, value + std::strlen(value), magnitude);
  if (error == std::errc::result_out_of_range) return std::numeric_limits<std::uint32_t>::max();
  return isNegative ? 0 - magnitude : magnitude;
}

}  // namespace

char readEscape(Span& text) noexcept {
  const char c = text.first();
  // "\8" and "\9" are no octal digits: NUL, with nothing consumed. Keep.
  if (isAsciiDigit(c)) return readNumber(text, 8);
  text.skip(1);
  if (c == 'x') return readNumber(text, 16);
  const char named = namedEscape(c);
  return named != '\0' ? named : c;
}

char readQuotedCharacter(Span& text) noexcept {
  text.skip(1);
  char c = text.first();
  text.skip(1);
  if (c == '\\') c = readEscape(text);
  // Whatever stands in the place of the closing quote is skipped. Keep.
  text.skip(1);
  return c;
}

void convert(const char* text, const char*& value) noexcept {
  value = text;
}
void convert(const char* text, int& value) noexcept {
  value = vel_atol32(text);
}
void convert(const char* text, long& value) noexcept {
  value = vel_atol32(text);
}
void convert(const char* text, unsigned int& value) noexcept {
  value = unsignedOf(text);
}
void convert(const char* text, unsigned long& value) noexcept {
  value = unsignedOf(text);
}
void convert(const char* text, char& value) noexcept {
  value = *text == '\'' ? velIniFileGetQuotedCharacter(text) : *text;
}
void convert(const char* text, bool& value) noexcept {
  // The value is looked for in the tokens: "", "N" and "E|Y" are true as well. Keep.
  value = velStrFind(VelClIniFile::getStringAllTrueTokens(), text, true) != nullptr;
}

}  // namespace vel::inifile

namespace {

using vel::inifile::Span;

char readWith(char (*read)(Span&) noexcept, const char*& cursor) {
  Span text{cursor, cursor + std::strlen(cursor)};
  const char c = read(text);
  cursor = text.begin;
  return c;
}

}  // namespace

char velIniFileGetEscCharacter(const char*& cursor) {
  return readWith(vel::inifile::readEscape, cursor);
}

char velIniFileGetQuotedCharacter(const char*& cursor) {
  return readWith(vel::inifile::readQuotedCharacter, cursor);
}
