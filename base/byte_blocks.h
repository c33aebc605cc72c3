// Searches long texts for a pair of bytes at a fixed distance, 64 positions at a time. The caller decides
// what to do at a match.
//
// Each block of 16 bytes is compared with the first byte of the pair, and the block `distance` bytes further
// with the second; the AND of both results marks the matches. Looking for two characters of a search word
// instead of one makes false matches rare, so the caller's slow comparison runs seldom.
//
//   pair "a", "c", distance 2      text   x a b c a b d a b c
//                                  "a"    . 1 . . 1 . . 1 . .
//                                  "c"    . 1 . . . . . 1 . .    two bytes further
//                                  AND    . 1 . . . . . 1 . .
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel {

/// Sixteen bytes, as a vector type of the compiler: it becomes one register on processors that have vectors
/// of this size.
using ByteBlock = unsigned char __attribute__((vector_size(16)));

inline constexpr std::size_t kBlocksAtOnce = 4;
inline constexpr std::size_t kBytesAtOnce = kBlocksAtOnce * sizeof(ByteBlock);

/// A block with the same byte everywhere.
inline ByteBlock blockOf(unsigned char byte) noexcept {
  return byte - ByteBlock{};
}

inline ByteBlock blockAt(const char* text) noexcept {
  ByteBlock block;
  std::memcpy(&block, text, sizeof block);
  return block;
}

/// One byte to compare with. `hits` sets each byte of its result to 0xFF where it matches, else to 0.
struct OneByte {
  unsigned char byte;

  bool has(char c) const noexcept { return static_cast<unsigned char>(c) == byte; }
  ByteBlock hits(ByteBlock block) const noexcept {
    return reinterpret_cast<ByteBlock>(block == blockOf(byte));
  }
};

/// Two bytes that count as equal, such as both cases of a letter. They may be the same.
struct ByteChoice {
  unsigned char one;
  unsigned char other;

  bool has(char c) const noexcept { return OneByte{one}.has(c) || OneByte{other}.has(c); }
  ByteBlock hits(ByteBlock block) const noexcept {
    return OneByte{one}.hits(block) | OneByte{other}.hits(block);
  }
};

/// A pair of bytes at a fixed distance from each other.
template <typename Byte>
class BytePair {
 public:
  BytePair(Byte first, Byte second, std::size_t distance) noexcept
      : first_(first), second_(second), distance_(distance) {}

  /// Returns the first match within kBytesAtOnce bytes from `text` on that `isWanted` accepts, or null. Reads
  /// `distance` bytes beyond them.
  template <typename IsWanted>
  const char* find(const char* text, IsWanted isWanted) const noexcept {
    // Not a loop, so that the four results stay in registers.
    constexpr std::size_t kSize = sizeof(ByteBlock);
    const ByteBlock found[kBlocksAtOnce] = {hitsIn(text), hitsIn(text + kSize), hitsIn(text + 2 * kSize),
                                            hitsIn(text + 3 * kSize)};
    const Halves halves = halvesOf((found[0] | found[1]) | (found[2] | found[3]));
    if ((halves[0] | halves[1]) == 0) return nullptr;
    for (const ByteBlock& hits : found)
      for (std::uint64_t half : halvesOf(hits)) {
        // On little-endian processors the lowest set bit belongs to the first match. Each match has eight
        // bits, which are cleared together.
        for (; half != 0; half &= ~(std::uint64_t{0xFF} << std::countr_zero(half))) {
          const char* const place = text + std::countr_zero(half) / 8;
          if (isWanted(place)) return place;
        }
        text += sizeof half;
      }
    return nullptr;
  }

 private:
  using Halves = std::array<std::uint64_t, 2>;
  static_assert(std::endian::native == std::endian::little);

  static Halves halvesOf(ByteBlock block) noexcept { return std::bit_cast<Halves>(block); }
  ByteBlock hitsIn(const char* text) const noexcept {
    return first_.hits(blockAt(text)) & second_.hits(blockAt(text + distance_));
  }

  Byte first_;
  Byte second_;
  std::size_t distance_;
};

}  // namespace vel
