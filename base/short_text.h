// Strings that may be null or not terminated by a NUL, and copies of short texts. Everything is inline,
// because a trace entry copies two texts: a call costs more than the copy, and the functions of some C
// libraries handle one byte at a time.
#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vel {

constexpr const char* textOrEmpty(const char* text) noexcept {
  return text != nullptr ? text : "";
}
constexpr std::string_view textOrEmpty(const char* text, std::size_t size) noexcept {
  return {text, text != nullptr ? size : 0};
}

#if defined(__SSE2__) && !defined(VEL_SANITIZED)

/// Returns the length of a string, at most `limit`. Reads whole aligned blocks, so it may read bytes outside
/// the string, but never outside the page of its last character. A sanitizer would report that as an overrun,
/// hence the plain variant below.
inline std::size_t boundedLength(const char* text, std::size_t limit) noexcept {
  constexpr std::size_t kBlock = sizeof(__m128i);
  if (limit == 0) return 0;
  const std::size_t skipped = reinterpret_cast<std::uintptr_t>(text) % kBlock;
  const char* block = text - skipped;
  const auto terminators = [&block] {
    const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(block));
    return static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
  };
  unsigned int found = terminators() >> skipped;
  std::size_t length = 0;
  for (std::size_t step = kBlock - skipped; found == 0; step = kBlock) {
    length += step;
    if (length >= limit) return limit;
    block += kBlock;
    found = terminators();
  }
  length += static_cast<std::size_t>(std::countr_zero(found));
  return length < limit ? length : limit;
}

#else

inline std::size_t boundedLength(const char* text, std::size_t limit) noexcept {
  const void* const end = limit == 0 ? nullptr : std::memchr(text, '\0', limit);
  return end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - text);
}

#endif

/// Copies between sizeof(Word) and twice as many bytes as two words, which overlap for sizes in between. This
/// avoids a loop over the remaining bytes.
template <typename Word>
void copyAsTwo(unsigned char* out, const unsigned char* in, std::size_t count) noexcept {
  Word first, last;
  std::memcpy(&first, in, sizeof first);
  std::memcpy(&last, in + count - sizeof last, sizeof last);
  std::memcpy(out, &first, sizeof first);
  std::memcpy(out + count - sizeof last, &last, sizeof last);
}

/// Copies bytes between areas that do not overlap; fast for up to some dozens of bytes.
inline void copyShort(void* to, const void* from, std::size_t count) noexcept {
  constexpr std::size_t kBlock = 16;
  auto* const out = static_cast<unsigned char*>(to);
  const auto* const in = static_cast<const unsigned char*>(from);
  if (count >= kBlock) {
    // The last block may overlap the one before.
    for (std::size_t i = 0; i < count - kBlock; i += kBlock) std::memcpy(out + i, in + i, kBlock);
    std::memcpy(out + count - kBlock, in + count - kBlock, kBlock);
  } else if (count >= sizeof(std::uint64_t)) {
    copyAsTwo<std::uint64_t>(out, in, count);
  } else if (count >= sizeof(std::uint32_t)) {
    copyAsTwo<std::uint32_t>(out, in, count);
  } else {
    for (std::size_t i = 0; i < count; ++i) out[i] = in[i];
  }
}

}  // namespace vel
