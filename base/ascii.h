// Characters and numbers of single-byte texts, independent of the locale and of the width of long.
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

/// The decimal number at the start of `text`, behind blanks and a sign as the runtime's own functions
/// allow, saturating at the limits of 32 bits on every system. 0 when there is none.
std::int32_t vel_atol32(const char* text) noexcept;
/// The same, unsigned: a negative number gives 0. `end`, unless null, is set behind the number, or to
/// `text` when there is none.
std::uint32_t vel_strtoul32(const char* text, const char** end) noexcept;

}  // namespace vel
