// Hashes names, eight bytes at a time: a key is added to both halves of each word, and the products of the
// halves are summed up. The scheme follows NH by J. Black et al. ("UMAC: Fast and Secure Message
// Authentication", CRYPTO 1999), whose collisions are rare for names that were chosen without knowing the
// key. Two things differ: the keys of the words come from a linear congruential generator instead of a table
// of random numbers, and the sum is rotated before each word.
#include "inifile/name_index.h"

#include <bit>

#include "platform/clocks.h"

namespace vel::inifile {

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);

template <typename Word>
std::uint64_t wordAt(const char* text) noexcept {
  Word word = 0;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// Packs up to eight bytes into a word. From four bytes on two loads do it, which may overlap: together with
/// the length, which the hash contains as well, the word still tells texts apart.
std::uint64_t shortText(const char* text, std::size_t length) noexcept {
  constexpr std::size_t kHalf = sizeof(std::uint32_t);
  if (length >= kHalf)
    return wordAt<std::uint32_t>(text) << 32 | wordAt<std::uint32_t>(text + length - kHalf);
  std::uint64_t bytes = 0;
  for (std::size_t i = 0; i < length; ++i) bytes = bytes << 8 | static_cast<unsigned char>(text[i]);
  return bytes;
}

/// Lower-cases the ASCII letters among eight bytes at once. Without its top bit each byte is at most 0x7F, so
/// no addition carries into the next one. Adding 0x3F sets the top bit of a byte from 'A' on, adding 0x25
/// that of a byte beyond 'Z': the two differ for capital letters only. Bytes that had the top bit set are not
/// ASCII. A quarter of 0x80 is 0x20, the distance to the small letter.
std::uint64_t lowerCased(std::uint64_t bytes) noexcept {
  constexpr std::uint64_t kEach = 0x0101010101010101;
  const std::uint64_t low = bytes & (0x7F * kEach);
  const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
  const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
  const std::uint64_t isUpper = (fromA ^ beyondZ) & ~bytes & (0x80 * kEach);
  return bytes | (isUpper >> 2);
}

/// Draws the key from the address of a variable, which differs where the system randomises addresses, and
/// from the clock. That suffices to keep it from somebody who writes a file; it is not a secret for
/// cryptography.
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

/// The last word of a long name overlaps the one before, so that no byte after the name is read.
std::uint32_t hashOf(const char* name) noexcept {
  static const std::uint64_t seed = drawSeed();
  const std::size_t length = std::strlen(name);
  std::uint64_t sum = seed + length;
  std::uint64_t key = seed;
  const auto add = [&](std::uint64_t bytes) {
    key = key * 0xD1342543DE82EF95 + 0x2545F4914F6CDD1D;
    sum = std::rotl(sum, 29) + product(lowerCased(bytes), key);
  };
  for (std::size_t i = 0; i + kWord < length; i += kWord) add(wordAt<std::uint64_t>(name + i));
  add(length >= kWord ? wordAt<std::uint64_t>(name + length - kWord) : shortText(name, length));
  // The table selects slots by the low bits of the result. The upper half of the product has them, because
  // they depend on more bits of the sum there.
  sum *= 0x9E3779B97F4A7C15;
  return static_cast<std::uint32_t>(sum >> 32);
}

}  // namespace vel::inifile
