// Single bytes to UCS-2 by vectors: a table of 256 units in registers.
#include "codepage/vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

/// A table with the low and the high bytes of its units apart.
struct Planes {
  __m512i low[4];
  __m512i high[4];
};

/// Every second byte of two vectors, from byte `first` on.
VEL_VECTOR inline __m512i everySecond(__m512i a, __m512i b, int first) {
  alignas(64) static constexpr unsigned char kEven[64] = {
      0,  2,  4,  6,  8,  10, 12,  14,  16,  18,  20,  22,  24,  26,  28,  30,  32,  34,  36,  38, 40, 42,
      44, 46, 48, 50, 52, 54, 56,  58,  60,  62,  64,  66,  68,  70,  72,  74,  76,  78,  80,  82, 84, 86,
      88, 90, 92, 94, 96, 98, 100, 102, 104, 106, 108, 110, 112, 114, 116, 118, 120, 122, 124, 126};
  return _mm512_permutex2var_epi8(a, _mm512_add_epi8(load(kEven), bytes(first)), b);
}

VEL_VECTOR inline void split(const std::uint16_t* table, Planes& planes) {
  for (std::size_t i = 0; i < 4; ++i) {
    const __m512i a = load(table + i * 64);
    const __m512i b = load(table + i * 64 + 32);
    planes.low[i] = everySecond(a, b, 0);
    planes.high[i] = everySecond(a, b, 1);
  }
}

}  // namespace

VEL_VECTOR void vectors::lookUpBytes(char* target, const char* source, std::size_t size,
                                     const std::uint16_t* table) noexcept {
  if (size < kBlock) return kPortableKernels.lookUpBytes(target, source, size, table);
  Planes planes;
  split(table, planes);
  // The last block may overlap the one before.
  for (std::size_t i = 0; i < size; i += kBlock) {
    if (size - i < kBlock) i = size - kBlock;
    const __m512i index = load(source + i);
    const __m512i low = lookUp(planes.low, index);
    const __m512i high = lookUp(planes.high, index);
    storeUnits(target + i * kUnitSize, low, high);
  }
}

}  // namespace vel::codepage

#endif
