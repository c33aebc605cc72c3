// Length and copy of texts of at most some hundred bytes, without a call: a trace entry has two of them, and
// some systems' own functions look at a byte at a time.
#pragma once

#if defined(__SSE2__) && !defined(VEL_PORTABLE_CODE)
#define VEL_TRACE_SSE2
#include <emmintrin.h>
#endif

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel::trace {

#if defined(VEL_TRACE_SSE2) && !defined(VEL_SANITIZED)

/// The length of a text, at most `limit`. Whole blocks of memory are read, which lie in the same pages as the
/// text; a sanitizer would take that for a fault.
inline std::size_t boundedLength(const char* text, std::size_t limit) {
  constexpr std::size_t kBlock = sizeof(__m128i);
  const std::size_t skipped = reinterpret_cast<std::uintptr_t>(text) % kBlock;
  const char* block = text - skipped;
  const auto terminators = [&block] {
    const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(block));
    return static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
  };
  unsigned int found = terminators() >> skipped;
  if (found != 0) return static_cast<std::size_t>(std::countr_zero(found));
  for (std::size_t length = kBlock - skipped; length < limit; length += kBlock) {
    block += kBlock;
    found = terminators();
    if (found == 0) continue;
    length += static_cast<std::size_t>(std::countr_zero(found));
    return length < limit ? length : limit;
  }
  return limit;
}

#else

inline std::size_t boundedLength(const char* text, std::size_t limit) {
  const void* const end = std::memchr(text, '\0', limit);
  return end == nullptr ? limit : static_cast<std::size_t>(static_cast<const char*>(end) - text);
}

#endif

/// Copies bytes as two words that may overlap; there are at least as many as a word has.
template <typename Word>
void copyAsTwo(unsigned char* out, const unsigned char* in, std::size_t count) {
  Word first, last;
  std::memcpy(&first, in, sizeof first);
  std::memcpy(&last, in + count - sizeof last, sizeof last);
  std::memcpy(out, &first, sizeof first);
  std::memcpy(out + count - sizeof last, &last, sizeof last);
}

/// Copies bytes to where they do not overlap.
inline void copyShort(unsigned char* out, const void* bytes, std::size_t count) {
  constexpr std::size_t kBlock = 16;
  const auto* const in = static_cast<const unsigned char*>(bytes);
  if (count >= kBlock) {
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

}  // namespace vel::trace
