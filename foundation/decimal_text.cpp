// Decimal text of numbers: the number of digits is counted first, then they are written in pairs from the
// lowest upwards.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "vel_include/vel_helpers.h"

namespace {

constexpr std::array<char, 200> makePairs() {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i)
    pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  return pairs;
}

constexpr std::array<char, 200> kPairs = makePairs();

constexpr std::array<std::uint64_t, 20> makePowers() {
  std::array<std::uint64_t, 20> powers{};
  std::uint64_t power = 1;
  for (std::uint64_t& one : powers) {
    one = power;
    power *= 10;
  }
  return powers;
}

constexpr std::array<std::uint64_t, 20> kPowersOfTen = makePowers();

/// 1233 / 4096 is a little more than the logarithm of 2: this is the number of digits or one less.
template <typename Number>
unsigned int countDigits(Number magnitude) noexcept {
  const auto bits = static_cast<unsigned int>(std::bit_width(magnitude | 1U));
  const unsigned int digits = bits * 1233 >> 12;
  return digits + (magnitude >= kPowersOfTen[digits] || digits == 0 ? 1U : 0U);
}

void writePair(char* out, std::uint32_t pair) noexcept {
  std::memcpy(out, kPairs.data() + std::size_t{2} * pair, 2);
}

/// The digits that end at `end`.
void writeUpTo(char* end, std::uint32_t magnitude) noexcept {
  for (; magnitude >= 100; magnitude /= 100) writePair(end -= 2, magnitude % 100);
  if (magnitude >= 10)
    writePair(end - 2, magnitude);
  else
    *(end - 1) = static_cast<char>('0' + magnitude);
}

/// Eight digits, zeros included: four pairs that do not wait for each other.
void writeEight(char* out, std::uint32_t number) noexcept {
  const std::uint32_t high = number / 10000;
  const std::uint32_t low = number % 10000;
  writePair(out, high / 100);
  writePair(out + 2, high % 100);
  writePair(out + 4, low / 100);
  writePair(out + 6, low % 100);
}

/// Terminated digits; returns their number.
unsigned int writeDigits(std::uint32_t magnitude, char* out) noexcept {
  const unsigned int count = countDigits(magnitude);
  writeUpTo(out + count, magnitude);
  out[count] = '\0';
  return count;
}

unsigned int writeDigits(std::uint64_t magnitude, char* out) noexcept {
  constexpr std::uint64_t kEightDigits = 100'000'000;
  const unsigned int count = countDigits(magnitude);
  char* end = out + count;
  *end = '\0';
  for (; magnitude >= kEightDigits; magnitude /= kEightDigits)
    writeEight(end -= 8, static_cast<std::uint32_t>(magnitude % kEightDigits));
  if (end != out) writeUpTo(end, static_cast<std::uint32_t>(magnitude));
  return count;
}

template <typename Magnitude, typename Number>
unsigned int writeSigned(Number value, char* out) noexcept {
  const auto bits = static_cast<Magnitude>(value);
  // Stored in any case, so that mixed signs cost no jump.
  *out = '-';
  const unsigned int sign = value < 0 ? 1U : 0U;
  return sign + writeDigits(sign != 0 ? Magnitude{0} - bits : bits, out + sign);
}

}  // namespace

unsigned int velItoa(int value, char* out) {
  return writeSigned<std::uint32_t>(value, out);
}

unsigned int velLtoa(long value, char* out) {
  return writeSigned<std::uint32_t>(static_cast<std::int32_t>(value), out);
}

unsigned int velULtoa(unsigned long value, char* out) {
  return writeDigits(static_cast<std::uint32_t>(value), out);
}

unsigned int velI64toa(long long value, char* out) {
  return writeSigned<std::uint64_t>(value, out);
}

unsigned int velW64toa(unsigned long long value, char* out) {
  return writeDigits(static_cast<std::uint64_t>(value), out);
}
