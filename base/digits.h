// Decimal and hexadecimal digits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/ascii.h"

namespace vel {

inline constexpr const char* kUpperHexDigits = "0123456789ABCDEF";
inline constexpr const char* kLowerHexDigits = "0123456789abcdef";

/// Returns the value of a hexadecimal digit in either case; 16, which is not a digit in any supported base,
/// for other characters.
constexpr unsigned int hexDigitValue(char c) noexcept {
  if (isAsciiDigit(c)) return static_cast<unsigned int>(c - '0');
  const char upper = toAsciiUpper(c);
  return upper >= 'A' && upper <= 'F' ? static_cast<unsigned int>(upper - 'A') + 10 : 16;
}
constexpr bool isHexDigit(char c) noexcept {
  return hexDigitValue(c) < 16;
}

/// Returns the two hexadecimal digits of a byte.
constexpr std::array<char, 2> hexPair(unsigned char byte, const char* digits = kUpperHexDigits) noexcept {
  return {digits[byte >> 4], digits[byte & 0xF]};
}

/// The maximum number of characters that writeHex writes.
inline constexpr std::size_t kMaxHexDigits = 16;

/// Writes a number in hexadecimal without leading zeros, but at least one digit, and returns the end.
constexpr char* writeHex(char* out, std::uint64_t number, const char* digits = kUpperHexDigits) noexcept {
  int count = 1;
  while (count < 16 && number >> (4 * count) != 0) ++count;
  while (count-- > 0) *out++ = digits[number >> (4 * count) & 0xF];
  return out;
}

using DecimalPairs = std::array<std::array<char, 2>, 100>;

consteval DecimalPairs makeDecimalPairs() {
  DecimalPairs pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i)
    pairs[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
  return pairs;
}

/// The two digits of each number below 100. Writing two digits per division halves the number of divisions.
inline constexpr DecimalPairs kDecimalPairs = makeDecimalPairs();

inline void writeDecimalPair(char* out, std::uint64_t number) noexcept {
  std::memcpy(out, kDecimalPairs[number].data(), 2);
}

}  // namespace vel
