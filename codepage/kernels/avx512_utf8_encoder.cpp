// UCS-2 to UTF-8 by vectors. Every unit is encoded in a lane of its own, which is as wide as the longest
// result: two bytes for 32 units below U+0800, four bytes for 16 units otherwise. Then the bytes that belong
// to a result are compressed:
//
//   unit       0041         00E9         20AC
//   lane       41 .. .. ..  C3 A9 .. ..  E2 82 AC ..
//   compressed 41 C3 A9 E2 82 AC
//
// Each lane is computed for every length, and masks select one, which avoids a branch per character.
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

constexpr std::size_t kDwordLanes = 16;

/// 16 encoded characters, one in each lane, the first byte lowest; and a mask of bytes with FF for each byte
/// that the characters use.
struct Encoded {
  __m512i bytes;
  __m512i usedBytes;
};

/// Returns six bits of `value`, from bit `from` on, moved to byte `place`.
VEL_VECTOR inline __m512i sixBits(__m512i value, unsigned int from, unsigned int place) {
  return _mm512_slli_epi32(_mm512_and_si512(_mm512_srli_epi32(value, from), dwords(0x3F)), place * 8);
}

/// Encodes the character in each lane. `pairs` selects the lanes whose character comes from a surrogate pair
/// and so has four bytes.
VEL_VECTOR inline Encoded encodeLanes(__m512i value, __mmask16 pairs) {
  const __mmask16 two = _mm512_cmpge_epu32_mask(value, dwords(0x80));
  const __mmask16 three = _mm512_cmpge_epu32_mask(value, dwords(0x800));
  const __m512i tail = sixBits(value, 0, 0);
  Encoded encoded{value, dwords(0xFF)};
  const __m512i asTwo = _mm512_or_si512(_mm512_srli_epi32(value, 6), _mm512_slli_epi32(tail, 8));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, two, asTwo, dwords(0x80C0));
  encoded.usedBytes = _mm512_mask_mov_epi32(encoded.usedBytes, two, dwords(0xFFFF));
  const __m512i middle = sixBits(value, 6, 1);
  const __m512i asThree =
      _mm512_or_si512(_mm512_srli_epi32(value, 12), _mm512_or_si512(middle, _mm512_slli_epi32(tail, 16)));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, three, asThree, dwords(0x8080E0));
  encoded.usedBytes = _mm512_mask_mov_epi32(encoded.usedBytes, three, dwords(0xFFFFFF));
  if (pairs == 0) return encoded;
  const __m512i asFour =
      _mm512_or_si512(_mm512_or_si512(_mm512_srli_epi32(value, 18), sixBits(value, 12, 1)),
                      _mm512_or_si512(_mm512_slli_epi32(middle, 8), _mm512_slli_epi32(tail, 24)));
  encoded.bytes = _mm512_mask_or_epi32(encoded.bytes, pairs, asFour, dwords(0x808080F0));
  encoded.usedBytes = _mm512_mask_mov_epi32(encoded.usedBytes, pairs, dwords(0xFFFFFFFF));
  return encoded;
}

/// Returns which of 16 units are noncharacters, which the caller replaces: U+FDD0 to U+FDEF, U+FFFE and
/// U+FFFF.
VEL_VECTOR inline __mmask16 noncharacters(__m512i units) {
  const __mmask16 arabic = _mm512_cmplt_epu32_mask(_mm512_sub_epi32(units, dwords(0xFDD0)), dwords(0x20));
  return static_cast<__mmask16>(arabic | _mm512_cmpge_epu32_mask(units, dwords(0xFFFE)));
}

/// Loads 16 units, each into a lane of four bytes.
VEL_VECTOR inline __m512i loadUnits(const char* source) {
  return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(source)));
}

/// Encodes 16 units, and one more if the last of them begins a pair. A pair is encoded in the lane of its
/// first unit; the lane of the second one gets no bytes.
VEL_VECTOR inline void encodeBlock(Cursor& cursor) {
  const __m512i units = loadUnits(cursor.source);
  const __m512i next = loadUnits(cursor.source + kUnitSize);
  const auto matches = [](__m512i of, std::uint32_t mask, std::uint32_t value) VEL_VECTOR {
    return _mm512_cmpeq_epi32_mask(_mm512_and_si512(of, dwords(mask)), dwords(value));
  };
  const __mmask16 surrogates = matches(units, 0xF800, 0xD800);
  const auto pairs = static_cast<__mmask16>(matches(units, 0xFC00, 0xD800) & matches(next, 0xFC00, 0xDC00));
  const auto seconds = static_cast<__mmask16>(pairs << 1);
  const auto invalid = static_cast<__mmask16>((surrogates & ~pairs & ~seconds) | noncharacters(units));
  __m512i values = _mm512_mask_mov_epi32(units, invalid, dwords(kUtf8Replacement));
  values = _mm512_mask_sub_epi32(values, pairs, _mm512_add_epi32(_mm512_slli_epi32(units, 10), next),
                                 dwords(kPairOffset));
  const Encoded encoded = encodeLanes(values, pairs);
  const __m512i usedBytes = _mm512_mask_mov_epi32(encoded.usedBytes, seconds, _mm512_setzero_si512());
  const __mmask64 usedMask = _mm512_test_epi8_mask(usedBytes, usedBytes);
  store(cursor.target, _mm512_maskz_compress_epi8(usedMask, encoded.bytes));
  cursor.target += std::popcount(static_cast<std::uint64_t>(usedMask));
  // The last pair ends in the next block.
  cursor.source += kUnitSize * (kDwordLanes + (pairs >> 15));
}

VEL_VECTOR inline void encodeAscii(Cursor& cursor, __m512i units) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(cursor.target), _mm512_cvtepi16_epi8(units));
  cursor.source += kBlock;
  cursor.target += kBlock / kUnitSize;
}

/// Encodes 32 units below 0x800.
VEL_VECTOR inline void encodeUpToTwoBytes(Cursor& cursor, __m512i units) {
  const __mmask32 two = _mm512_cmpge_epu16_mask(units, words(0x80));
  const __m512i tail = _mm512_slli_epi16(_mm512_and_si512(units, words(0x3F)), 8);
  const __m512i lead = _mm512_or_si512(_mm512_srli_epi16(units, 6), words(0x80C0));
  const __m512i encoded = _mm512_mask_mov_epi16(units, two, _mm512_or_si512(lead, tail));
  const __mmask64 usedMask = _mm512_movepi8_mask(_mm512_mask_mov_epi16(words(0xFF), two, words(0xFFFF)));
  store(cursor.target, _mm512_maskz_compress_epi8(usedMask, encoded));
  cursor.source += kBlock;
  cursor.target += std::popcount(std::uint64_t{usedMask});
}

VEL_VECTOR void encodeUtf8Blocks(Cursor& cursor) noexcept {
  Cursor local = cursor;
  while (local.sourceSize() >= kBlock && local.targetSize() >= kBlock) {
    const __m512i units = load(local.source);
    if (_mm512_test_epi16_mask(units, words(0xFF80)) == 0)
      encodeAscii(local, units);
    else if (_mm512_test_epi16_mask(units, words(0xF800)) == 0)
      encodeUpToTwoBytes(local, units);
    else
      encodeBlock(local);
  }
  cursor = local;
}

}  // namespace

void vectors::encodeUtf8(Cursor& cursor) noexcept {
  encodeUtf8Blocks(cursor);
  convertTail<kBlock + 3>(
      cursor,
      {.convert = &encodeUtf8Blocks, .maxTail = kBlock - 1, .sourceNulSize = kUnitSize, .targetNulSize = 1});
}

}  // namespace vel::codepage

#endif
