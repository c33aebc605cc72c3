// Widening, narrowing and swapping bytes by vectors, 32 units at a time.
#include "codepage/kernels/vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

constexpr std::size_t kUnits = kBlock / kUnitSize;

/// Calls `move(i)` for whole blocks, and `rest(i, count)` once for the units after the last one. A last block
/// that overlaps the one before would be faster, but would swap units twice where source and target are the
/// same buffer.
template <typename Move, typename Rest>
VEL_VECTOR inline void moveBlocks(std::size_t count, Move move, Rest rest) {
  std::size_t i = 0;
  for (; i + kUnits <= count; i += kUnits) move(i);
  rest(i, count - i);
}

}  // namespace

VEL_VECTOR void vectors::widen(char* target, const char* source, std::size_t count) noexcept {
  moveBlocks(
      count,
      [=](std::size_t i) VEL_VECTOR {
        const __m256i part = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + i));
        store(target + i * kUnitSize, _mm512_cvtepu8_epi16(part));
      },
      [=](std::size_t i, std::size_t rest) {
        kPortableKernels.widen(target + i * kUnitSize, source + i, rest);
      });
}

VEL_VECTOR void vectors::narrow(char* target, const char* source, std::size_t count) noexcept {
  moveBlocks(
      count,
      [=](std::size_t i) VEL_VECTOR {
        const __m256i part = _mm512_cvtepi16_epi8(load(source + i * kUnitSize));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + i), part);
      },
      [=](std::size_t i, std::size_t rest) {
        kPortableKernels.narrow(target + i, source + i * kUnitSize, rest);
      });
}

VEL_VECTOR void vectors::swap(char* target, const char* source, std::size_t count) noexcept {
  moveBlocks(
      count,
      [=](std::size_t i) VEL_VECTOR {
        const __m512i units = load(source + i * kUnitSize);
        store(target + i * kUnitSize,
              _mm512_or_si512(_mm512_slli_epi16(units, 8), _mm512_srli_epi16(units, 8)));
      },
      [=](std::size_t i, std::size_t rest) {
        kPortableKernels.swap(target + i * kUnitSize, source + i * kUnitSize, rest);
      });
}

}  // namespace vel::codepage

#endif
