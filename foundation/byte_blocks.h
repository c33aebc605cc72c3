// Looking through long texts many bytes at once, for places where one byte stands before another. What is
// to be done at such a place is the caller's matter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel {

/// One byte, or two that count as the same.
struct ByteChoice {
  unsigned char one;
  unsigned char other;

  bool has(char c) const noexcept {
    const auto byte = static_cast<unsigned char>(c);
    return byte == one || byte == other;
  }
};

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

/// A pair of bytes that stand `distance` apart.
class BytePair {
 public:
  BytePair(ByteChoice first, ByteChoice second, std::size_t distance) noexcept
      : first_(first), second_(second), distance_(distance) {}

  bool isAt(const char* text) const noexcept { return first_.has(*text) && second_.has(text[distance_]); }

  /// Whether it begins within the kBytesAtOnce bytes from `text` on; reads `distance` bytes beyond them.
  bool isWithin(const char* text) const noexcept {
    ByteBlock found{};
    for (std::size_t i = 0; i < kBytesAtOnce; i += sizeof(ByteBlock))
      found |= hits(first_, text + i) & hits(second_, text + i + distance_);
    std::uint64_t halves[2];
    std::memcpy(halves, &found, sizeof halves);
    return (halves[0] | halves[1]) != 0;
  }

 private:
  static ByteBlock hits(ByteChoice choice, const char* text) noexcept {
    const ByteBlock block = blockAt(text);
    return reinterpret_cast<ByteBlock>((block == blockOf(choice.one)) | (block == blockOf(choice.other)));
  }

  ByteChoice first_;
  ByteChoice second_;
  std::size_t distance_;
};

}  // namespace vel
