// Looking through long texts many bytes at once, for places where one byte stands before another. What is
// to be done at such a place is the caller's matter.
#pragma once

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

  bool isAt(const char* text) const noexcept { return first_.has(*text) && second_.has(text[distance_]); }

  /// Whether it begins within the kBytesAtOnce bytes from `text` on; reads `distance` bytes beyond them.
  bool isWithin(const char* text) const noexcept {
    ByteBlock found{};
    for (std::size_t i = 0; i < kBytesAtOnce; i += sizeof(ByteBlock))
      found |= first_.hits(blockAt(text + i)) & second_.hits(blockAt(text + i + distance_));
    std::uint64_t halves[2];
    std::memcpy(halves, &found, sizeof halves);
    return (halves[0] | halves[1]) != 0;
  }

 private:
  Byte first_;
  Byte second_;
  std::size_t distance_;
};

}  // namespace vel
