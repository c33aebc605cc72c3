// Hash values of names: sums of products of keyed halves (after NH by J. Black et al., UMAC, 1999), eight
// bytes at a time.
#include "inifile/name_index.h"

#include <algorithm>
#include <bit>

#include "platform/platform.h"

namespace vel::inifile {

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);

std::uint64_t wordAt(const char* text) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, text, kWord);
  return word;
}

std::uint64_t bytesAt(const char* text, std::size_t count) noexcept {
  std::uint64_t bytes = 0;
  for (std::size_t i = count; i > 0; --i) bytes = bytes << 8 | static_cast<unsigned char>(text[i - 1]);
  return bytes;
}

/// Eight bytes with small ASCII letters.
std::uint64_t lowerCased(std::uint64_t bytes) noexcept {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  const std::uint64_t low = bytes & (0x7F * kEach);
  const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
  const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
  const std::uint64_t isUpper = (fromA ^ beyondZ) & ~bytes & (0x80 * kEach);
  return bytes | (isUpper >> 2);
}

std::uint64_t drawSeed() noexcept {
  static const char place = 0;
  const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&place));
  std::int64_t counter = 0;
  platform::performanceCounter(counter);
  return (address ^ static_cast<std::uint64_t>(counter)) * 0x9E3779B97F4A7C15;
}

std::uint64_t product(std::uint64_t bytes, std::uint64_t key) noexcept {
  const std::uint64_t low = static_cast<std::uint32_t>(bytes + key);
  const std::uint64_t high = static_cast<std::uint32_t>((bytes >> 32) + (key >> 32));
  return low * high;
}

}  // namespace

std::uint32_t hashOf(const char* name) noexcept {
  static const std::uint64_t seed = drawSeed();
  std::size_t left = std::strlen(name);
  std::uint64_t sum = seed + left;
  std::uint64_t key = seed;
  while (left != 0) {
    const std::size_t step = std::min(left, kWord);
    const std::uint64_t bytes = step == kWord ? wordAt(name) : bytesAt(name, step);
    key = key * 0xD1342543DE82EF95 + 0x2545F4914F6CDD1D;
    sum = std::rotl(sum, 29) + product(lowerCased(bytes), key);
    name += step;
    left -= step;
  }
  sum *= 0x9E3779B97F4A7C15;
  return static_cast<std::uint32_t>(sum >> 32);
}

}  // namespace vel::inifile
