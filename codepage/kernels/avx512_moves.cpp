// Widening, narrowing and swapping bytes by vectors, 32 units at a time.
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

constexpr std::size_t kUnits = kBlock / kUnitSize;

/// Calls `move(i)` for each whole block, and `moveTail(i, tail)` once for the `tail` units after the last
/// whole block. An overlapping last block instead of the tail would be faster, but would swap units twice
/// where source and target are the same buffer.
template <typename Move, typename MoveTail>
VEL_VECTOR inline void moveBlocks(std::size_t count, Move move, MoveTail moveTail) {
  std::size_t i = 0;
  for (; i + kUnits <= count; i += kUnits) move(i);
  moveTail(i, count - i);
}

}  // namespace

VEL_VECTOR void vectors::widen(char* target, const char* source, std::size_t count) noexcept {
  moveBlocks(
      count,
      [=](std::size_t i) VEL_VECTOR {
        const __m256i part = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source + i));
        store(target + i * kUnitSize, _mm512_cvtepu8_epi16(part));
      },
      [=](std::size_t i, std::size_t tail) {
        kPortableKernels.widen(target + i * kUnitSize, source + i, tail);
      });
}

VEL_VECTOR void vectors::narrow(char* target, const char* source, std::size_t count) noexcept {
  moveBlocks(
      count,
      [=](std::size_t i) VEL_VECTOR {
        const __m256i part = _mm512_cvtepi16_epi8(load(source + i * kUnitSize));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target + i), part);
      },
      [=](std::size_t i, std::size_t tail) {
        kPortableKernels.narrow(target + i, source + i * kUnitSize, tail);
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
      [=](std::size_t i, std::size_t tail) {
        kPortableKernels.swap(target + i * kUnitSize, source + i * kUnitSize, tail);
      });
}

}  // namespace vel::codepage

#endif
