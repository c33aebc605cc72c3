// Classifies ASCII characters and parses decimal numbers, independent of the locale and of the width of long.
#pragma once

#include <cstdint>

namespace vel {

constexpr bool isAsciiDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}
constexpr bool isAsciiLetter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isAsciiAlnum(char c) noexcept {
  return isAsciiDigit(c) || isAsciiLetter(c);
}
constexpr char toAsciiUpper(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

constexpr char toAsciiLower(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool equalsIgnoringAsciiCase(const char* a, const char* b) noexcept {
  while (*a != '\0' && toAsciiUpper(*a) == toAsciiUpper(*b)) {
    ++a;
    ++b;
  }
  return toAsciiUpper(*a) == toAsciiUpper(*b);
}

/// Parses the decimal number at the start of `text`, after optional white space and one sign. Saturates at
/// the limits of 32 bits, whatever the width of long is. Returns 0 if no digit follows.
std::int32_t parseInt32(const char* text) noexcept;
/// Parses an unsigned number in the same way; a negative number gives 0. `end`, unless null, is set to the
/// character after the number, or to `text` if it does not begin with one.
std::uint32_t parseUint32(const char* text, const char** end) noexcept;

}  // namespace vel
