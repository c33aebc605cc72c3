// Looking through long texts many bytes at once, for places where one byte stands before another. What is
// to be done at such a place is the caller's matter.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel {

/// Sixteen bytes; compilers make one vector of them on every processor that has such.
using ByteBlock = unsigned char __attribute__((vector_size(16)));

inline constexpr std::size_t kBlocksAtOnce = 4;
inline constexpr std::size_t kBytesAtOnce = kBlocksAtOnce * sizeof(ByteBlock);

inline ByteBlock blockOf(unsigned char byte) noexcept {
  return byte - ByteBlock{};
}

inline ByteBlock blockAt(const char* text) noexcept {
  ByteBlock block;
  std::memcpy(&block, text, sizeof block);
  return block;
}

struct OneByte {
  unsigned char byte;

  bool has(char c) const noexcept { return static_cast<unsigned char>(c) == byte; }
  ByteBlock hits(ByteBlock block) const noexcept {
    return reinterpret_cast<ByteBlock>(block == blockOf(byte));
  }
};

/// Two bytes that count as the same; they may be.
struct ByteChoice {
  unsigned char one;
  unsigned char other;

  bool has(char c) const noexcept { return OneByte{one}.has(c) || OneByte{other}.has(c); }
  ByteBlock hits(ByteBlock block) const noexcept {
    return OneByte{one}.hits(block) | OneByte{other}.hits(block);
  }
};

/// A pair of bytes that stand `distance` apart.
template <typename Byte>
class BytePair {
 public:
  BytePair(Byte first, Byte second, std::size_t distance) noexcept
      : first_(first), second_(second), distance_(distance) {}

  /// The first place within the kBytesAtOnce bytes from `text` on where it stands and that `isWanted` takes,
  /// or null; reads `distance` bytes beyond them.
  template <typename IsWanted>
  const char* find(const char* text, IsWanted isWanted) const noexcept {
    // Spelled out, so that they stay in registers.
    constexpr std::size_t kSize = sizeof(ByteBlock);
    const ByteBlock found[kBlocksAtOnce] = {hitsIn(text), hitsIn(text + kSize), hitsIn(text + 2 * kSize),
                                            hitsIn(text + 3 * kSize)};
    const Halves halves = halvesOf((found[0] | found[1]) | (found[2] | found[3]));
    if ((halves[0] | halves[1]) == 0) return nullptr;
    for (const ByteBlock& hits : found)
      for (std::uint64_t half : halvesOf(hits)) {
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
