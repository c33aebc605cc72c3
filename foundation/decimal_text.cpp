// Decimal text of numbers: eight digits are made at once within one word, without a jump, and as many bytes
// as the text has are stored.
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "base/digits.h"
#include "vel_include/vel_helpers.h"

namespace {

static_assert(std::endian::native == std::endian::little);

/// One or two digits, without a jump: what stands behind a single one is written over. Returns their number.
unsigned int writeLeadingPair(char* out, std::uint64_t pair) noexcept {
  const unsigned int isOneDigit = pair < 10 ? 1 : 0;
  std::uint16_t text = 0;
  std::memcpy(&text, vel::kDecimalPairs[pair].data(), sizeof text);
  text = static_cast<std::uint16_t>(text >> 8 * isOneDigit);
  std::memcpy(out, &text, sizeof text);
  return 2 - isOneDigit;
}

/// A number below 100 to the power of `pairs` as a fraction of that power's hundredth with 32 bits behind the
/// point: a little too large, by less than what would change a digit.
template <unsigned int pairs>
std::uint64_t fixedPointOf(std::uint32_t number) noexcept {
  static_assert(pairs >= 2 && pairs <= 5);
  if constexpr (pairs == 2) return std::uint64_t{number} * 42949673;
  if constexpr (pairs == 3) return std::uint64_t{number} * 429497;
  if constexpr (pairs == 4) return (std::uint64_t{number} * 281474977 >> 16) + 1;
  return (std::uint64_t{number} * 1441151881 >> 25) + 1;
}

/// The digits behind the point, and the terminator.
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

template <unsigned int pairs>
unsigned int writePairs(std::uint32_t number, char* out) noexcept {
  const std::uint64_t fraction = fixedPointOf<pairs>(number);
  const unsigned int count = writeLeadingPair(out, fraction >> 32);
  writeFractionDigits<pairs - 1>(fraction, out + count);
  return count + 2 * (pairs - 1);
}

constexpr std::uint32_t kTenToTheEighth = 100'000'000;

/// All eight digits, with zeros in front.
void writeEight(std::uint32_t number, char* out) noexcept {
  const std::uint64_t fraction = fixedPointOf<4>(number);
  vel::writeDecimalPair(out, fraction >> 32);
  writeFractionDigits<3>(fraction, out + 2);
}

/// Terminated digits; returns their number.
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

unsigned int writeDigits(std::uint64_t number, char* out) noexcept {
  if (number >> 32 == 0) return writeDigits(static_cast<std::uint32_t>(number), out);
  const unsigned int count = writeDigits(number / kTenToTheEighth, out);
  writeEight(static_cast<std::uint32_t>(number % kTenToTheEighth), out + count);
  return count + 8;
}

template <typename Number>
unsigned int writeSigned(Number value, char* out) noexcept {
  using Magnitude = std::make_unsigned_t<Number>;
  const auto bits = static_cast<Magnitude>(value);
  // Stored in any case, so that mixed signs cost no jump.
  *out = '-';
  const unsigned int sign = value < 0 ? 1U : 0U;
  return sign + writeDigits(sign != 0 ? Magnitude{0} - bits : bits, out + sign);
}

}  // namespace

unsigned int velItoa(int value, char* out) {
  return writeSigned(std::int32_t{value}, out);
}

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
