// Single bytes to UCS-2, and back, by vectors. The whole table is kept in registers: its 256 units are split
// into a plane of low bytes and one of high bytes, four vectors each. Two look-ups give the low and the high
// bytes of 64 units, which are interleaved when they are stored; memory is read for the source alone.
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

/// A table of units, with their low and high bytes apart.
struct Planes {
  __m512i low[4];
  __m512i high[4];
};

/// Returns every second byte of two vectors, starting with byte `first`.
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

VEL_VECTOR inline void lookUpBlock(char* target, const char* source, const Planes& planes,
                                   StoreVector store) {
  const __m512i index = load(source);
  storeUnits(target, lookUp(planes.low, index), lookUp(planes.high, index), store);
}

/// From this size on the caches do not keep the result anyway. Streaming stores bypass them, which saves
/// reading each line of the target before it is overwritten.
constexpr std::size_t kStreamedSize = std::size_t{8} << 20;

/// Returns how many bytes it has looked up. Streaming stores need aligned blocks, so the first block is
/// stored normally and the aligned ones begin within it; at an odd address no unit is aligned, so nothing is
/// done and the result is 0.
VEL_VECTOR inline std::size_t streamBlocks(char* target, const char* source, std::size_t size,
                                           const Planes& planes) {
  const std::size_t address = reinterpret_cast<std::uintptr_t>(target);
  if (address % kUnitSize != 0) return 0;
  lookUpBlock(target, source, planes, store);
  std::size_t i = (kBlock - address % kBlock) / kUnitSize;
  for (; size - i >= kBlock; i += kBlock) lookUpBlock(target + i * kUnitSize, source + i, planes, stream);
  // Streaming stores are weakly ordered: without a fence, another thread could see a later store before them.
  _mm_sfence();
  return i;
}

}  // namespace

VEL_VECTOR void vectors::lookUpBytes(char* target, const char* source, std::size_t size,
                                     const std::uint16_t* table) noexcept {
  if (size < kBlock) return kPortableKernels.lookUpBytes(target, source, size, table);
  Planes planes;
  split(table, planes);
  std::size_t i = size >= kStreamedSize ? streamBlocks(target, source, size, planes) : 0;
  for (; i < size; i += kBlock) {
    // The last block may overlap the one before, which writes the same units again.
    if (size - i < kBlock) i = size - kBlock;
    lookUpBlock(target + i * kUnitSize, source + i, planes, store);
  }
}

/// Blocks of units below 100 are looked up in the page that the table has for them, others one by one.
VEL_VECTOR void vectors::mapUnits(char* target, const char* source, std::size_t count,
                                  const unsigned char* table) noexcept {
  if (count < kBlock) return kPortableKernels.mapUnits(target, source, count, table);
  const ByteTable page = loadBytes(table + table[0] * 256U);
  for (std::size_t i = 0; i < count; i += kBlock) {
    // The last block may overlap the one before.
    if (count - i < kBlock) i = count - kBlock;
    const char* const units = source + i * kUnitSize;
    const __m512i first = load(units), second = load(units + kBlock);
    if (_mm512_test_epi16_mask(_mm512_or_si512(first, second), words(0xFF00)) != 0) {
      kPortableKernels.mapUnits(target + i, units, kBlock, table);
      continue;
    }
    const __m512i low = _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi16_epi8(first)),
                                           _mm512_cvtepi16_epi8(second), 1);
    store(target + i, lookUp(page.part, low));
  }
}

}  // namespace vel::codepage

#endif
