// The inner loops with AVX-512: 64 bytes at a time, every lane decoded or encoded as if a character began
// there, and the lanes where one does then moved together.
#include "codepage/kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <bit>

#include "codepage/conversion.h"

#define VEL_VECTOR __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2")))

namespace vel::codepage {

namespace {

constexpr std::size_t kBlock = 64;

VEL_VECTOR inline __m512i load(const void* from) {
  return _mm512_loadu_si512(from);
}
VEL_VECTOR inline void store(void* to, __m512i value) {
  _mm512_storeu_si512(to, value);
}
VEL_VECTOR inline __m512i bytes(int value) {
  return _mm512_set1_epi8(static_cast<char>(value));
}
VEL_VECTOR inline __m512i words(int value) {
  return _mm512_set1_epi16(static_cast<short>(value));
}
VEL_VECTOR inline __m512i dwords(std::uint32_t value) {
  return _mm512_set1_epi32(static_cast<int>(value));
}

// ---- Single bytes ----------------------------------------------------------------------------

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

VEL_VECTOR inline void split(const std::uint16_t* table, bool foldsNextLine, Planes& planes) {
  for (std::size_t i = 0; i < 4; ++i) {
    const __m512i a = load(table + i * 64);
    const __m512i b = load(table + i * 64 + 32);
    planes.high[i] = everySecond(a, b, 0);
    planes.low[i] = everySecond(a, b, 1);
    const __mmask64 isNextLine = _mm512_mask_cmpeq_epi8_mask(
        _mm512_testn_epi8_mask(planes.high[i], planes.high[i]), planes.low[i], bytes(kNextLine));
    if (foldsNextLine) planes.low[i] = _mm512_mask_mov_epi8(planes.low[i], isNextLine, bytes(kLineFeed));
  }
}

VEL_VECTOR inline __m512i lookUp(const __m512i (&plane)[4], __m512i index) {
  const __m512i lower = _mm512_permutex2var_epi8(plane[0], index, plane[1]);
  const __m512i upper = _mm512_permutex2var_epi8(plane[2], index, plane[3]);
  return _mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(index), upper);
}

VEL_VECTOR void lookUpBytes(char* target, const char* source, std::size_t size, const std::uint16_t* table,
                            bool foldsNextLine) noexcept {
  if (size < kBlock) return kPortableKernels.lookUpBytes(target, source, size, table, foldsNextLine);
  Planes planes;
  split(table, foldsNextLine, planes);
  // The last block may overlap the one before.
  for (std::size_t i = 0; i < size; i += kBlock) {
    if (size - i < kBlock) i = size - kBlock;
    const __m512i index = load(source + i);
    const __m512i low = lookUp(planes.low, index);
    const __m512i high = lookUp(planes.high, index);
    const __m512i even = _mm512_unpacklo_epi8(low, high);
    const __m512i odd = _mm512_unpackhi_epi8(low, high);
    store(target + i * kUnitSize,
          _mm512_permutex2var_epi64(even, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), odd));
    store(target + i * kUnitSize + kBlock,
          _mm512_permutex2var_epi64(even, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), odd));
  }
}

// ---- UTF-8 to UCS-2 --------------------------------------------------------------------------

/// For each byte of a block a bit.
struct Leads {
  __mmask64 trail;  ///< 80 to BF
  __mmask64 two;    ///< C0 and more: at least two bytes
  __mmask64 three;  ///< E0 and more
  __mmask64 four;   ///< F0 and more
};

/// The block, and what follows each of its bytes.
struct Window {
  __m512i at[3];
};

/// Trailing bytes behind the block that belong to its last character: three bits.
inline unsigned int trailsBehind(const Leads& leads) {
  const auto behind = static_cast<unsigned int>((leads.two >> 63) | (leads.three >> 62) | (leads.four >> 61));
  return behind & 7;
}

/// Half a block, one unit for each byte. The sums are those of the portable decoder, in 16 bits.
VEL_VECTOR inline __m512i decodeHalf(const Window& window, const Leads& leads, int half) {
  __m512i at[3];
  for (int i = 0; i < 3; ++i) {
    const __m256i part =
        half == 0 ? _mm512_castsi512_si256(window.at[i]) : _mm512_extracti64x4_epi64(window.at[i], 1);
    at[i] = _mm512_cvtepu8_epi16(part);
  }
  const auto mask = [half](__mmask64 lanes) {
    return static_cast<__mmask32>(half == 0 ? lanes : lanes >> 32);
  };
  const __m512i two = _mm512_add_epi16(_mm512_slli_epi16(at[0], 6), at[1]);
  const __m512i three = _mm512_add_epi16(_mm512_slli_epi16(two, 6), at[2]);
  __m512i units = _mm512_mask_sub_epi16(at[0], mask(leads.two), two, words(0x3080));
  units = _mm512_mask_sub_epi16(units, mask(leads.three), three, words(0x2080));
  if (leads.four == 0) return units;
  // The high surrogate stands at the lead byte, the low one at the byte behind it.
  const __m512i upper = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(at[0], words(7)), 8),
                                        _mm512_slli_epi16(_mm512_and_si512(at[1], words(0x3F)), 2));
  const __m512i high = _mm512_or_si512(upper, _mm512_srli_epi16(_mm512_and_si512(at[2], words(0x3F)), 4));
  const __m512i low = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(at[1], words(0xF)), 6),
                                      _mm512_and_si512(at[2], words(0x3F)));
  units = _mm512_mask_add_epi16(units, mask(leads.four), high, words(0xD7C0));
  return _mm512_mask_add_epi16(units, mask(leads.four << 1), low, words(0xDC00));
}

/// Whether every trailing byte is where a lead byte wants it, and none elsewhere.
VEL_VECTOR inline bool isWellFormed(const Window& window, const Leads& leads, unsigned int behind,
                                    __m512i third) {
  if (leads.trail != ((leads.two << 1) | (leads.three << 2) | (leads.four << 3))) return false;
  const __mmask64 next = _mm512_cmplt_epi8_mask(third, bytes(0xC0));
  if ((behind & ~static_cast<unsigned int>(next >> 61)) != 0) return false;
  // Five and six bytes, and four bytes for what takes less, are the portable decoder's.
  if (leads.four == 0) return true;
  const __mmask64 isLong = _mm512_cmpge_epu8_mask(window.at[0], bytes(0xF8));
  const __mmask64 isF0 = _mm512_cmpeq_epi8_mask(window.at[0], bytes(0xF0));
  return (isLong | _mm512_mask_cmplt_epu8_mask(isF0, window.at[1], bytes(0x90))) == 0;
}

VEL_VECTOR inline void storeUnits(Progress& progress, __m512i units, __mmask32 lanes) {
  store(progress.target, _mm512_maskz_compress_epi16(lanes, units));
  progress.target += kUnitSize * static_cast<std::size_t>(std::popcount(lanes));
}

VEL_VECTOR inline void decodeAscii(Progress& progress, __m512i block) {
  store(progress.target, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)));
  store(progress.target + kBlock, _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)));
  progress.source += kBlock;
  progress.target += kBlock * kUnitSize;
}

/// False when the block is not well-formed.
VEL_VECTOR inline bool decodeBlock(Progress& progress, __m512i block) {
  const Window window{{block, load(progress.source + 1), load(progress.source + 2)}};
  Leads leads{_mm512_cmplt_epi8_mask(block, bytes(0xC0)), _mm512_cmpge_epu8_mask(block, bytes(0xC0)),
              _mm512_cmpge_epu8_mask(block, bytes(0xE0)), _mm512_cmpge_epu8_mask(block, bytes(0xF0))};
  const unsigned int behind = trailsBehind(leads);
  if (!isWellFormed(window, leads, behind, load(progress.source + 3))) return false;
  std::size_t size = kBlock + static_cast<std::size_t>(std::popcount(behind));
  __mmask64 lanes = ~leads.trail | (leads.four << 1);
  // A low surrogate has no lane when its character begins with the last byte: the next block takes it.
  if ((leads.four >> 63) != 0) {
    size = kBlock - 1;
    lanes &= ~(1ULL << 63);
  }
  storeUnits(progress, decodeHalf(window, leads, 0), static_cast<__mmask32>(lanes));
  storeUnits(progress, decodeHalf(window, leads, 1), static_cast<__mmask32>(lanes >> 32));
  progress.source += size;
  return true;
}

VEL_VECTOR void decodeUtf8(Progress& progress) noexcept {
  while (progress.sourceSize() >= kBlock + 3 && progress.targetSize() >= kBlock * kUnitSize) {
    const __m512i block = load(progress.source);
    if (_mm512_movepi8_mask(block) == 0)
      decodeAscii(progress, block);
    else if (!decodeBlock(progress, block))
      return;
  }
}

// ---- UCS-2 to UTF-8 --------------------------------------------------------------------------

constexpr std::size_t kUnits = 16;

/// 16 characters, one for each lane, as encoded bytes from the lowest on, and which of those count.
struct Encoded {
  __m512i bytes;
  __m512i counts;
};

/// `value` shifted right, of which the lowest six bits move to byte `place`.
VEL_VECTOR inline __m512i sixBits(__m512i value, unsigned int from, unsigned int place) {
  return _mm512_slli_epi32(_mm512_and_si512(_mm512_srli_epi32(value, from), dwords(0x3F)), place * 8);
}

VEL_VECTOR inline Encoded encodeLanes(__m512i value, __mmask16 pairs) {
  const __mmask16 two = _mm512_cmpge_epu32_mask(value, dwords(0x80));
  const __mmask16 three = _mm512_cmpge_epu32_mask(value, dwords(0x800));
  const __m512i tail = sixBits(value, 0, 0);
  Encoded encoded{value, dwords(0xFF)};
  const __m512i asTwo = _mm512_or_si512(_mm512_srli_epi32(value, 6), _mm512_slli_epi32(tail, 8));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, two, asTwo, dwords(0x80C0));
  encoded.counts = _mm512_mask_mov_epi32(encoded.counts, two, dwords(0xFFFF));
  const __m512i middle = sixBits(value, 6, 1);
  const __m512i asThree =
      _mm512_or_si512(_mm512_srli_epi32(value, 12), _mm512_or_si512(middle, _mm512_slli_epi32(tail, 16)));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, three, asThree, dwords(0x8080E0));
  encoded.counts = _mm512_mask_mov_epi32(encoded.counts, three, dwords(0xFFFFFF));
  if (pairs == 0) return encoded;
  const __m512i asFour =
      _mm512_or_si512(_mm512_or_si512(_mm512_srli_epi32(value, 18), sixBits(value, 12, 1)),
                      _mm512_or_si512(_mm512_slli_epi32(middle, 8), _mm512_slli_epi32(tail, 24)));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, pairs, asFour, dwords(0x808080F0));
  encoded.counts = _mm512_mask_mov_epi32(encoded.counts, pairs, dwords(0xFFFFFFFF));
  return encoded;
}

/// Which of 16 units cannot stand for themselves, surrogates not counted.
VEL_VECTOR inline __mmask16 noncharacters(__m512i units) {
  const __mmask16 arabic = _mm512_cmplt_epu32_mask(_mm512_sub_epi32(units, dwords(0xFDD0)), dwords(0x20));
  return static_cast<__mmask16>(arabic | _mm512_cmpge_epu32_mask(units, dwords(0xFFFE)));
}

/// 16 units, and one more when the last of them begins a pair.
VEL_VECTOR inline void encodeBlock(Progress& progress) {
  const auto* const at = reinterpret_cast<const __m256i*>(progress.source);
  const auto* const behind = reinterpret_cast<const __m256i*>(progress.source + kUnitSize);
  const __m512i units = _mm512_cvtepu16_epi32(_mm256_loadu_si256(at));
  const __m512i next = _mm512_cvtepu16_epi32(_mm256_loadu_si256(behind));
  const auto tops = [](__m512i of, std::uint32_t mask, std::uint32_t value) VEL_VECTOR {
    return _mm512_cmpeq_epi32_mask(_mm512_and_si512(of, dwords(mask)), dwords(value));
  };
  const __mmask16 surrogates = tops(units, 0xF800, 0xD800);
  const auto pairs = static_cast<__mmask16>(tops(units, 0xFC00, 0xD800) & tops(next, 0xFC00, 0xDC00));
  const auto seconds = static_cast<__mmask16>(pairs << 1);
  const auto invalid = static_cast<__mmask16>((surrogates & ~pairs & ~seconds) | noncharacters(units));
  __m512i values = _mm512_mask_mov_epi32(units, invalid, dwords(0xFFFF));
  values = _mm512_mask_sub_epi32(values, pairs, _mm512_add_epi32(_mm512_slli_epi32(units, 10), next),
                                 dwords((0xD800U << 10) + 0xDC00 - 0x10000));
  const Encoded encoded = encodeLanes(values, pairs);
  const __m512i counts = _mm512_mask_mov_epi32(encoded.counts, seconds, _mm512_setzero_si512());
  const __mmask64 lanes = _mm512_test_epi8_mask(counts, counts);
  store(progress.target, _mm512_maskz_compress_epi8(lanes, encoded.bytes));
  progress.target += std::popcount(static_cast<std::uint64_t>(lanes));
  progress.source += kUnitSize * (kUnits + (pairs >> 15));
}

VEL_VECTOR void encodeUtf8(Progress& progress) noexcept {
  while (progress.sourceSize() >= kBlock && progress.targetSize() >= kBlock) {
    const __m512i units = load(progress.source);
    if (_mm512_test_epi16_mask(units, words(0xFF80)) != 0) {
      encodeBlock(progress);
      continue;
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(progress.target), _mm512_cvtepi16_epi8(units));
    progress.source += kBlock;
    progress.target += kBlock / kUnitSize;
  }
}

constexpr Kernels kVectorKernels{&lookUpBytes, &decodeUtf8, &encodeUtf8};

}  // namespace

const Kernels* vectorKernels() noexcept {
  __builtin_cpu_init();
  const bool isThere = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                       __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
                       __builtin_cpu_supports("avx512vbmi2");
  return isThere ? &kVectorKernels : nullptr;
}

}  // namespace vel::codepage

#else

namespace vel::codepage {

const Kernels* vectorKernels() noexcept {
  return nullptr;
}

}  // namespace vel::codepage

#endif
