// Formats integers as NUL-terminated decimal text. Parsing numbers is not done here; hexadecimal digits are
// in base/digits.h.
//
// A number of up to 32 bits is converted without division; larger ones are split into groups of eight digits
// first. One multiplication by a rounded-up reciprocal turns the number into a fixed-point number: the
// integer part is the leading pair of digits, and 32 bits follow the point. Each multiplication of the
// fraction by 100 then moves the next pair in front of the point:
//
//   123456 * ceil(2^32 / 10^4) = 12.3456...   "12"
//             0.3456... * 100  = 34.56...     "34"
//             0.56...   * 100  = 56.0...      "56"
//
// The number of pairs is known before the first store, so that only the leading pair needs a decision (one
// digit or two), and that one is made without a branch. The method is J. E. Anhalt's ("jeaiii"), explained
// by J. Jeon in "Faster integer formatting" (2022).
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "base/digits.h"
#include "vel_include/vel_helpers.h"

namespace {

static_assert(std::endian::native == std::endian::little);

/// Writes the leading pair without its leading zero and returns the number of digits. Avoids a branch: the
/// pair is shifted by one character if it has one digit, and the stray byte after it, which is always stored,
/// is overwritten by what follows (at least the NUL).
unsigned int writeLeadingPair(char* out, std::uint64_t pair) noexcept {
  const unsigned int isOneDigit = pair < 10 ? 1 : 0;
  std::uint16_t text = 0;
  std::memcpy(&text, vel::kDecimalPairs[pair].data(), sizeof text);
  text = static_cast<std::uint16_t>(text >> 8 * isOneDigit);
  std::memcpy(out, &text, sizeof text);
  return 2 - isOneDigit;
}

/// Returns number / 100^(pairs - 1) as a fixed-point number with 32 bits after the point; `number` must be
/// below 100^pairs. The factors are ceil(2^32 / 10^2), ceil(2^32 / 10^4), ceil(2^48 / 10^6) and
/// ceil(2^57 / 10^8): larger powers of two keep enough significant bits where the divisor is larger. Rounding
/// up (for the last two by adding 1 after the shift) makes the result slightly too large, by less than would
/// change a digit; rounding down would make exact multiples, such as 100, come out as "099".
template <unsigned int pairs>
std::uint64_t fixedPointOf(std::uint32_t number) noexcept {
  static_assert(pairs >= 2 && pairs <= 5);
  if constexpr (pairs == 2) return std::uint64_t{number} * 42949673;
  if constexpr (pairs == 3) return std::uint64_t{number} * 429497;
  if constexpr (pairs == 4) return (std::uint64_t{number} * 281474977 >> 16) + 1;
  return (std::uint64_t{number} * 1441151881 >> 25) + 1;
}

/// Writes the pairs of digits after the point, then the NUL. The recursion is resolved at compile time and
/// leaves straight-line code.
template <unsigned int pairs>
void writeFractionDigits(std::uint64_t fraction, char* out) noexcept {
  if constexpr (pairs == 0) {
    *out = '\0';
  } else {
    fraction = (fraction & 0xFFFFFFFF) * 100;
    vel::writeDecimalPair(out, fraction >> 32);
    writeFractionDigits<pairs - 1>(fraction, out + 2);
  }
}

/// Writes a number of 2 * pairs - 1 or 2 * pairs digits, and the NUL; returns the number of digits.
template <unsigned int pairs>
unsigned int writePairs(std::uint32_t number, char* out) noexcept {
  const std::uint64_t fraction = fixedPointOf<pairs>(number);
  const unsigned int count = writeLeadingPair(out, fraction >> 32);
  writeFractionDigits<pairs - 1>(fraction, out + count);
  return count + 2 * (pairs - 1);
}

constexpr std::uint32_t kTenToTheEighth = 100'000'000;

/// Writes exactly eight digits, with leading zeros, and the NUL.
void writeEight(std::uint32_t number, char* out) noexcept {
  const std::uint64_t fraction = fixedPointOf<4>(number);
  vel::writeDecimalPair(out, fraction >> 32);
  writeFractionDigits<3>(fraction, out + 2);
}

/// Writes the digits and the NUL; returns the number of digits. Small numbers are tested first because they
/// are the most frequent.
unsigned int writeDigits(std::uint32_t number, char* out) noexcept {
  if (number < 100) {
    const unsigned int count = writeLeadingPair(out, number);
    out[count] = '\0';
    return count;
  }
  if (number < 10'000) return writePairs<2>(number, out);
  if (number < 1'000'000) return writePairs<3>(number, out);
  return number < kTenToTheEighth ? writePairs<4>(number, out) : writePairs<5>(number, out);
}

/// The same for 64 bits: the high part, which may again exceed 32 bits, and then groups of eight digits.
unsigned int writeDigits(std::uint64_t number, char* out) noexcept {
  if (number >> 32 == 0) return writeDigits(static_cast<std::uint32_t>(number), out);
  const unsigned int count = writeDigits(number / kTenToTheEighth, out);
  writeEight(static_cast<std::uint32_t>(number % kTenToTheEighth), out + count);
  return count + 8;
}

/// Writes a signed number; returns the number of characters, the sign included.
template <typename Number>
unsigned int writeSigned(Number value, char* out) noexcept {
  using Magnitude = std::make_unsigned_t<Number>;
  const auto bits = static_cast<Magnitude>(value);
  // Always stored, and overwritten by the first digit of a non-negative number: with mixed signs a branch
  // would often be mispredicted. The magnitude is computed unsigned, which is defined for the minimum, too.
  *out = '-';
  const unsigned int sign = value < 0 ? 1U : 0U;
  return sign + writeDigits(sign != 0 ? Magnitude{0} - bits : bits, out + sign);
}

}  // namespace

unsigned int velItoa(int value, char* out) {
  return writeSigned(std::int32_t{value}, out);
}

// Intentional: long counts with its low 32 bits, its size on Windows, so that all systems give the same text.
unsigned int velLtoa(long value, char* out) {
  return writeSigned(static_cast<std::int32_t>(value), out);
}

unsigned int velULtoa(unsigned long value, char* out) {
  return writeDigits(static_cast<std::uint32_t>(value), out);
}

unsigned int velI64toa(long long value, char* out) {
  return writeSigned(std::int64_t{value}, out);
}

unsigned int velW64toa(unsigned long long value, char* out) {
  return writeDigits(static_cast<std::uint64_t>(value), out);
}
