// Decodes escapes and character literals, and converts values to numbers, characters and truth. Finding them
// in a value is value_parser.cpp's work, writing them value_writer.cpp's.
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

/// Returns the control character that a letter after a backslash denotes, or NUL if the letter denotes
/// itself.
char namedEscape(char c) noexcept {
  constexpr const char* kLetters = "abfnrtv";
  constexpr const char* kCharacters = "\a\b\f\n\r\t\v";
  const char* const found = c != '\0' ? std::strchr(kLetters, c) : nullptr;
  return found != nullptr ? kCharacters[found - kLetters] : '\0';
}

/// Consumes all digits that follow. Numbers above 32 bits are capped just above them, so that no count of
/// digits overflows.
std::uint64_t parseDigits(Span& text, unsigned int base) noexcept {
  constexpr std::uint64_t kBeyond32Bits = std::uint64_t{1} << 32;
  std::uint64_t number = 0;
  for (; !text.isEmpty() && hexDigitValue(*text.begin) < base; ++text.begin)
    number = std::min(number * base + hexDigitValue(*text.begin), kBeyond32Bits);
  return number;
}

/// Parses the number of an escape: saturated at 31 bits, as a signed 32-bit number, and then cut to its low
/// byte. So "\x141" gives "A", and "\x123456789" the byte 0xFF. Without digits the result is NUL.
char parseCharacterCode(Span& text, unsigned int base) noexcept {
  constexpr std::uint64_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<char>(static_cast<unsigned char>(std::min(parseDigits(text, base), kMax)));
}

/// Parses as strtoul with base 10 does where long has 32 bits: "-1" gives 4294967295. parseUint32 will not
/// do, because it gives 0 for every negative number.
std::uint32_t parseUnsigned(const char* value) noexcept {
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint32_t>::max();
  Span text{value, value + std::strlen(value)};
  text.skipSpace();
  const bool isNegative = text.first() == '-';
  if (isNegative || text.first() == '+') text.skip(1);
  const std::uint64_t magnitude = parseDigits(text, 10);
  if (magnitude > kMax) return kMax;
  const auto number = static_cast<std::uint32_t>(magnitude);
  return isNegative ? 0 - number : number;
}

}  // namespace

char readEscape(Span& text) noexcept {
  const char c = text.first();
  // Intentional: callers get NUL for "\8" and "\9", which begin no octal number; the digit is not consumed.
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
  // Intentional: callers find the cursor past the character in the place of the closing quote, even if that
  // is another character.
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
  // Intentional: the value is searched for in the list of tokens as a substring, so callers get true for "",
  // "N" and "E|Y" as well.
  value = velStrFind(VelClIniFile::getStringAllTrueTokens(), text, true) != nullptr;
}

}  // namespace vel::inifile

namespace {

using vel::inifile::Span;

/// Runs a reader of spans on a NUL-terminated string, and moves the caller's cursor as far as it read.
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
