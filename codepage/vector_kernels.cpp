// The inner loops with AVX-512: 64 bytes at a time, every lane decoded or encoded as if a character began
// there, and the lanes where one does then moved together.
#include "codepage/kernels.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>
#include <bit>

#include "codepage/conversion.h"
#include "codepage/conversion_tables.h"

#define VEL_VECTOR __attribute__((target("avx512f,avx512bw,avx512vl,avx512vbmi,avx512vbmi2,bmi2,pclmul")))

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

VEL_VECTOR inline void split(const std::uint16_t* table, Planes& planes) {
  for (std::size_t i = 0; i < 4; ++i) {
    const __m512i a = load(table + i * 64);
    const __m512i b = load(table + i * 64 + 32);
    planes.low[i] = everySecond(a, b, 0);
    planes.high[i] = everySecond(a, b, 1);
  }
}

VEL_VECTOR inline __m512i lookUp(const __m512i (&plane)[4], __m512i index) {
  const __m512i lower = _mm512_permutex2var_epi8(plane[0], index, plane[1]);
  const __m512i upper = _mm512_permutex2var_epi8(plane[2], index, plane[3]);
  return _mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(index), upper);
}

/// 64 units, of which two vectors have the halves.
VEL_VECTOR inline void storeUnits(char* target, __m512i low, __m512i high) {
  const __m512i even = _mm512_unpacklo_epi8(low, high);
  const __m512i odd = _mm512_unpackhi_epi8(low, high);
  store(target, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), odd));
  store(target + kBlock, _mm512_permutex2var_epi64(even, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), odd));
}

VEL_VECTOR void lookUpBytes(char* target, const char* source, std::size_t size,
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

/// A loop, what it leaves at the end of a text at most, and what zeros are on both sides.
struct Loop {
  void (*convert)(Progress& progress) noexcept;
  std::size_t rest;
  std::size_t sizeOfZero;
  std::size_t sizeOfResult;
};

/// The end of a text, which is too short for a loop: it gets the end with zeros behind.
inline void convertEnd(Progress& progress, const Loop& loop) {
  constexpr std::size_t kLongest = kBlock + 3;
  char source[kLongest * 2] = {};
  char target[sizeof source * 3];
  const std::size_t size = progress.sourceSize();
  if (size == 0 || size > kLongest) return;
  std::memcpy(source, progress.source, size);
  Progress end{source, source + size + loop.rest, target, target + sizeof target};
  loop.convert(end);
  auto consumed = static_cast<std::size_t>(end.source - source);
  auto written = static_cast<std::size_t>(end.target - target);
  if (consumed > size) {
    written -= (consumed - size) / loop.sizeOfZero * loop.sizeOfResult;
    consumed = size;
  }
  if (written > progress.targetSize()) return;
  std::memcpy(progress.target, target, written);
  progress.source += consumed;
  progress.target += written;
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

VEL_VECTOR void decodeUtf8Blocks(Progress& progress) noexcept {
  Progress here = progress;
  while (here.sourceSize() >= kBlock + 3 && here.targetSize() >= kBlock * kUnitSize) {
    const __m512i block = load(here.source);
    if (_mm512_movepi8_mask(block) == 0)
      decodeAscii(here, block);
    else if (!decodeBlock(here, block))
      break;
  }
  progress = here;
}

void decodeUtf8(Progress& progress) noexcept {
  decodeUtf8Blocks(progress);
  convertEnd(progress, {&decodeUtf8Blocks, kBlock + 2, 1, kUnitSize});
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

VEL_VECTOR inline void encodeAscii(Progress& progress, __m512i units) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(progress.target), _mm512_cvtepi16_epi8(units));
  progress.source += kBlock;
  progress.target += kBlock / kUnitSize;
}

/// 32 units below 0x800.
VEL_VECTOR inline void encodeShort(Progress& progress, __m512i units) {
  const __mmask32 two = _mm512_cmpge_epu16_mask(units, words(0x80));
  const __m512i tail = _mm512_slli_epi16(_mm512_and_si512(units, words(0x3F)), 8);
  const __m512i lead = _mm512_or_si512(_mm512_srli_epi16(units, 6), words(0x80C0));
  const __m512i encoded = _mm512_mask_mov_epi16(units, two, _mm512_or_si512(lead, tail));
  const __mmask64 lanes = _mm512_movepi8_mask(_mm512_mask_mov_epi16(words(0xFF), two, words(0xFFFF)));
  store(progress.target, _mm512_maskz_compress_epi8(lanes, encoded));
  progress.source += kBlock;
  progress.target += std::popcount(std::uint64_t{lanes});
}

VEL_VECTOR void encodeUtf8Blocks(Progress& progress) noexcept {
  Progress here = progress;
  while (here.sourceSize() >= kBlock && here.targetSize() >= kBlock) {
    const __m512i units = load(here.source);
    if (_mm512_test_epi16_mask(units, words(0xFF80)) == 0)
      encodeAscii(here, units);
    else if (_mm512_test_epi16_mask(units, words(0xF800)) == 0)
      encodeShort(here, units);
    else
      encodeBlock(here);
  }
  progress = here;
}

void encodeUtf8(Progress& progress) noexcept {
  encodeUtf8Blocks(progress);
  convertEnd(progress, {&encodeUtf8Blocks, kBlock - 1, kUnitSize, 1});
}

// ---- Mixed bytes -----------------------------------------------------------------------------

/// A table of 256 bytes.
struct ByteTable {
  __m512i part[4];
};

VEL_VECTOR inline ByteTable loadBytes(const std::uint8_t* values) {
  return {{load(values), load(values + 64), load(values + 128), load(values + 192)}};
}

constexpr std::uint64_t kEven = 0x5555555555555555;

/// Which bytes of a block begin a character, and those that are lead bytes. The trail byte of the last of
/// them may be the next block's first.
struct Starts {
  std::uint64_t all;
  std::uint64_t pairs;
};

/// What one block leaves to the next.
struct Between {
  std::uint64_t isDouble;  ///< both are 0 or 1: as numbers they need no jumps
  std::uint64_t trail;     ///< 1 when the first byte is a trail byte
};

/// Bytes that can be lead bytes come in rows, of which every second one begins a pair. The difference borrows
/// from the start of a row to its end.
inline Starts findPairs(std::uint64_t canLead, Between& between) {
  const std::uint64_t rows = canLead & ~between.trail;
  const std::uint64_t ends = ((rows << 1 | ~kEven) - rows) ^ ~kEven;
  const Starts starts{~(ends ^ (rows | between.trail)), ends & rows};
  between.trail = starts.pairs >> 63;
  return starts;
}

/// The lowest `count` bits, up to all.
inline std::uint64_t lowest(std::size_t count) {
  return count < kBlock ? (1ULL << count) - 1 : ~0ULL;
}

/// Runs of pairs and of single bytes by turns.
inline Starts findRuns(std::uint64_t shiftOut, std::uint64_t shiftIn, Between& between) {
  Starts starts{0, 0};
  for (std::size_t at = between.trail; at < kBlock; ++at, between.isDouble ^= 1) {
    const std::uint64_t shifts = between.isDouble != 0 ? shiftIn >> at & kEven : shiftOut >> at;
    const auto run = std::min(static_cast<std::size_t>(std::countr_zero(shifts)), kBlock - at);
    starts.all |= (lowest(run) & (between.isDouble != 0 ? kEven : ~0ULL)) << at;
    if (between.isDouble != 0) starts.pairs |= (lowest(run) & kEven) << at;
    at += run;
    if (at == kBlock) break;
  }
  between.trail = starts.pairs >> 63;
  return starts;
}

/// In each bit, whether the number of bits up to it is odd.
VEL_VECTOR inline std::uint64_t parities(std::uint64_t bits) {
  const __m128i product =
      _mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<long long>(bits)), _mm_set1_epi8(-1), 0);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(product));
}

/// The same without a loop, for shifts that come by turns and do not divide a pair.
VEL_VECTOR inline Starts findTidyRuns(std::uint64_t shiftOut, std::uint64_t shiftIn, Between& between) {
  const std::uint64_t in = shiftIn & ~between.trail;
  const std::uint64_t out = shiftOut & ~between.trail;
  const std::uint64_t isDoubleBehind = parities(in | out) ^ (0 - between.isDouble);
  const std::uint64_t isDouble = isDoubleBehind << 1 | between.isDouble;
  const std::uint64_t pairBytes = isDouble & ~in & ~between.trail;
  // When no pair is divided, every second byte of all runs together is a lead byte.
  const std::uint64_t pairs = _pdep_u64(kEven, pairBytes);
  const std::uint64_t trails = (pairBytes & ~pairs) | between.trail;
  const std::uint64_t mayEnd = (trails | out) << 1 | between.isDouble;
  if (((in & ~mayEnd) | (out & isDouble)) != 0) [[unlikely]]
    return findRuns(shiftOut, shiftIn, between);
  between = {isDoubleBehind >> 63, pairs >> 63};
  return {pairs | ~(isDouble | out), pairs};
}

/// Looks up what stands at `numbers`, four of them read at once, and writes as many units or a few more.
inline void writeUnits(char* target, const std::uint16_t* units, const std::uint16_t* numbers,
                       std::size_t count) {
  constexpr std::size_t kStep = 8;
  for (std::size_t i = 0; i < count; i += kStep)
    for (std::size_t k = i; k < i + kStep; k += 4) {
      std::uint64_t four;
      std::memcpy(&four, numbers + k, sizeof four);
      for (std::size_t j = 0; j < 4; ++j)
        writeUnit(target + (k + j) * kUnitSize, toHostOrder(units[four >> 16 * j & 0xFFFF]));
    }
}

/// The number of a character's unit, counted from the first page on, has its page as the high byte.
VEL_VECTOR inline void decodeBlock(Progress& progress, const DoubleByteTable& table, const ByteTable& pages,
                                   __m512i block, const Starts& starts) {
  alignas(64) std::uint16_t numbers[kBlock];
  const __m512i high =
      _mm512_mask_sub_epi8(bytes(int{kSingleBytesPage}), starts.pairs, lookUp(pages.part, block), bytes(1));
  const __m512i low = _mm512_mask_mov_epi8(block, starts.pairs, load(progress.source + 1));
  storeUnits(reinterpret_cast<char*>(numbers), _mm512_maskz_compress_epi8(starts.all, low),
             _mm512_maskz_compress_epi8(starts.all, high));
  const auto count = static_cast<std::size_t>(std::popcount(starts.all));
  writeUnits(progress.target, table.pages[0], numbers, count);
  progress.source += kBlock;
  progress.target += count * kUnitSize;
}

VEL_VECTOR inline bool hasBlock(const Progress& progress) {
  return progress.sourceSize() > kBlock && progress.targetSize() >= kBlock * kUnitSize;
}

VEL_VECTOR void decodeMixed(Progress& progress, const DoubleByteTable& table) noexcept {
  const ByteTable leads = loadBytes(table.leadBytes);
  const ByteTable pages = loadBytes(table.pageNumbers);
  Progress here = progress;
  Between between{};
  while (hasBlock(here)) {
    const __m512i block = load(here.source);
    const __m512i isLead = lookUp(leads.part, block);
    decodeBlock(here, table, pages, block, findPairs(_mm512_test_epi8_mask(isLead, isLead), between));
  }
  here.source += between.trail;
  progress = here;
}

VEL_VECTOR void decodeShifted(Progress& progress, const DoubleByteTable& table, bool& isDouble) noexcept {
  const ByteTable pages = loadBytes(table.pageNumbers);
  Progress here = progress;
  Between between{isDouble, 0};
  while (hasBlock(here)) {
    const __m512i block = load(here.source);
    const Starts starts = findTidyRuns(_mm512_cmpeq_epi8_mask(block, bytes(kShiftOut)),
                                       _mm512_cmpeq_epi8_mask(block, bytes(kShiftIn)), between);
    const __mmask64 nextLines =
        _mm512_mask_cmpeq_epi8_mask(starts.all & ~starts.pairs, block, bytes(kNextLineByte));
    decodeBlock(here, table, pages, _mm512_mask_mov_epi8(block, nextLines, bytes(kLineFeedByte)), starts);
  }
  here.source += between.trail;
  progress = here;
  isDouble = between.isDouble != 0;
}

constexpr Kernels kVectorKernels{&lookUpBytes, &decodeUtf8, &encodeUtf8, &decodeMixed, &decodeShifted};

}  // namespace

const Kernels* vectorKernels() noexcept {
  __builtin_cpu_init();
  const bool isThere = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                       __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
                       __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("bmi2") &&
                       __builtin_cpu_supports("pclmul");
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
