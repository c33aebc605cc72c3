// Escapes and character literals in values, and values as numbers, characters and truth.
#include "inifile/value_characters.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "base/ascii.h"
#include "base/digits.h"
#include "vel_include/vel_helpers.h"
#include "vel_include/vel_inifile.h"

namespace vel::inifile {

namespace {

/// What each letter behind a back-slash stands for, 0 for itself.
char namedEscape(char c) noexcept {
  constexpr const char* kLetters = "abfnrtv";
  constexpr const char* kCharacters = "\a\b\f\n\r\t\v";
  const char* const found = c != '\0' ? std::strchr(kLetters, c) : nullptr;
  return found != nullptr ? kCharacters[found - kLetters] : '\0';
}

/// As many digits as follow; beyond 32 bits when the number is.
std::uint64_t parseDigits(Span& text, unsigned int base) noexcept {
  constexpr std::uint64_t kBeyond32Bits = std::uint64_t{1} << 32;
  std::uint64_t number = 0;
  for (; !text.isEmpty() && hexDigitValue(*text.begin) < base; ++text.begin)
    number = std::min(number * base + hexDigitValue(*text.begin), kBeyond32Bits);
  return number;
}

/// Saturates at 31 bits and is then cut to a character; NUL when there is no digit.
char parseCharacterCode(Span& text, unsigned int base) noexcept {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<char>(static_cast<unsigned char>(std::min(parseDigits(text, base), kMost)));
}

/// As strtoul with base 10, in 32 bits.
std::uint32_t parseUnsigned(const char* value) noexcept {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
  Span text{value, value + std::strlen(value)};
  text.skipSpace();
  const bool isNegative = text.first() == '-';
  if (isNegative || text.first() == '+') text.skip(1);
  const std::uint64_t magnitude = parseDigits(text, 10);
  if (magnitude > kMost) return kMost;
  const auto number = static_cast<std::uint32_t>(magnitude);
  return isNegative ? 0 - number : number;
}

}  // namespace

char readEscape(Span& text) noexcept {
  const char c = text.first();
  // "\8" and "\9" are no octal digits: NUL, with nothing consumed. Keep.
  if (isAsciiDigit(c)) return parseCharacterCode(text, 8);
  text.skip(1);
  if (c == 'x') return parseCharacterCode(text, 16);
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
  value = parseInt32(text);
}
void convert(const char* text, long& value) noexcept {
  value = parseInt32(text);
}
void convert(const char* text, unsigned int& value) noexcept {
  value = parseUnsigned(text);
}
void convert(const char* text, unsigned long& value) noexcept {
  value = parseUnsigned(text);
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
