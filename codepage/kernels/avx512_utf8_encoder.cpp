// UCS-2 to UTF-8 by vectors, 32 units at a time. Every unit is encoded in a lane of its own, which is as wide
// as the longest result: two bytes below U+0800, four bytes otherwise. Then the bytes that belong to a result
// are compressed:
//
//   unit       0041         00E9         20AC
//   lane       .. .. 41 ..  .. C3 A9 ..  E2 82 AC ..
//   compressed 41 C3 A9 E2 82 AC
//
// A surrogate pair needs no other lane: its first unit has the first two bytes of the character, its second
// one the last two.
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

namespace vel::codepage {

using namespace vectors;

namespace {

/// The units of a block by the bytes that they have.
struct Lengths {
  __mmask32 two;  ///< two or three
  __mmask32 three;
};

/// The first and second units of surrogate pairs.
struct Pairs {
  __mmask32 first, second;
};

VEL_VECTOR inline __mmask32 matches(__m512i units, int mask, int value) {
  return _mm512_cmpeq_epi16_mask(_mm512_and_si512(units, words(mask)), words(value));
}

/// Returns which units are noncharacters, which the caller replaces: U+FDD0 to U+FDEF, U+FFFE and U+FFFF.
VEL_VECTOR inline __mmask32 noncharacters(__m512i units) {
  const __mmask32 arabic = _mm512_cmplt_epu16_mask(_mm512_sub_epi16(units, words(0xFDD0)), words(0x20));
  return arabic | _mm512_cmpge_epu16_mask(units, words(0xFFFE));
}

/// The bytes of encoded characters: the first of three bytes (low) with the last but one (high), and the
/// last.
struct EncodedUnits {
  __m512i first, last;
};

VEL_VECTOR inline EncodedUnits encodeUnits(__m512i units, const Lengths& lengths) {
  const __m512i middle = _mm512_and_si512(_mm512_slli_epi16(units, 2), words(0x3F00));
  // The markers of three bytes, or C0 in the last but one.
  const __m512i markers = _mm512_mask_mov_epi16(words(0xC000), lengths.three, words(0x80E0));
  const __m512i tail = _mm512_or_si512(_mm512_and_si512(units, words(0x3F)), words(0x80));
  return {_mm512_or_si512(_mm512_or_si512(_mm512_srli_epi16(units, 12), middle), markers),
          _mm512_mask_mov_epi16(units, lengths.two, tail)};
}

/// Replaces the bytes of surrogate pairs.
VEL_VECTOR inline void encodePairs(EncodedUnits& encoded, __m512i units, const Pairs& pairs) {
  // The bits of the character from 2^10 on.
  const __m512i bits = _mm512_add_epi16(_mm512_and_si512(units, words(0x3FF)), words(0x40));
  const __m512i lead = _mm512_and_si512(bits, words(0x700));
  const __m512i second = _mm512_and_si512(_mm512_srli_epi16(bits, 2), words(0x3F));
  encoded.first = _mm512_mask_mov_epi16(encoded.first, pairs.first, _mm512_or_si512(lead, words(0xF000)));
  encoded.last = _mm512_mask_mov_epi16(encoded.last, pairs.first, _mm512_or_si512(second, words(0x80)));
  const __m512i previous = _mm512_maskz_expand_epi16(~__mmask32{1}, units);
  const __m512i upper = _mm512_slli_epi16(_mm512_and_si512(previous, words(3)), 12);
  const __m512i lower = _mm512_and_si512(_mm512_slli_epi16(units, 2), words(0xF00));
  const __m512i third = _mm512_or_si512(_mm512_or_si512(upper, lower), words(0x8000));
  encoded.first = _mm512_mask_mov_epi16(encoded.first, pairs.second, third);
}

/// Writes those of 64 bytes whose `used` has the top bit, and clobbers the others unless this is the tail.
template <bool isTail>
VEL_VECTOR inline void appendBytes(Cursor& cursor, __m512i bytes, __m512i used) {
  const __mmask64 mask = _mm512_movepi8_mask(used);
  const auto count = static_cast<std::size_t>(std::popcount(std::uint64_t{mask}));
  const __m512i compressed = _mm512_maskz_compress_epi8(mask, bytes);
  if constexpr (isTail)
    _mm512_mask_storeu_epi8(cursor.target, lowest(count), compressed);
  else
    store(cursor.target, compressed);
  cursor.target += count;
}

/// Puts the quarters of lanes into the order in which unpacking takes them.
VEL_VECTOR inline __m512i forUnpacking(__m512i units) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), units);
}

/// Appends the characters of the lanes `inside`.
template <bool isTail>
VEL_VECTOR inline void appendEncoded(Cursor& cursor, const EncodedUnits& encoded, const Lengths& lengths,
                                     __mmask32 inside) {
  const __m512i first = forUnpacking(encoded.first), last = forUnpacking(encoded.last);
  const __m512i used = forUnpacking(_mm512_or_si512(_mm512_maskz_mov_epi16(lengths.two, words(0xFF00)),
                                                    _mm512_maskz_mov_epi16(lengths.three, words(0xFF))));
  const __m512i one = forUnpacking(_mm512_maskz_mov_epi16(inside, words(0xFF)));
  appendBytes<isTail>(cursor, _mm512_unpacklo_epi16(first, last), _mm512_unpacklo_epi16(used, one));
  appendBytes<isTail>(cursor, _mm512_unpackhi_epi16(first, last), _mm512_unpackhi_epi16(used, one));
}

/// Encodes the units of the lanes `inside`, all 32 unless this is the tail. `next` has the unit after each.
/// If the last one begins a pair, it is left to the next block. Returns false, with nothing done, if the tail
/// does not fit.
template <bool isTail>
VEL_VECTOR inline bool encodeBlock(Cursor& cursor, __m512i units, __m512i next, __mmask32 inside) {
  Lengths lengths{_mm512_cmpge_epu16_mask(units, words(0x80)), _mm512_cmpge_epu16_mask(units, words(0x800))};
  const __mmask32 surrogates = matches(units, 0xF800, 0xD800);
  units = _mm512_mask_mov_epi16(units, noncharacters(units), words(kUtf8Replacement));
  Pairs pairs{};
  if (surrogates != 0) {
    pairs.first = matches(units, 0xFC00, 0xD800) & matches(next, 0xFC00, 0xDC00);
    pairs.second = pairs.first << 1;
    const __mmask32 inPair = pairs.first | pairs.second;
    units = _mm512_mask_mov_epi16(units, surrogates & ~inPair, words(kUtf8Replacement));
    lengths.three &= ~inPair;
  }
  if constexpr (isTail) {
    const int size = std::popcount(inside) + std::popcount(lengths.two) + std::popcount(lengths.three);
    if (static_cast<std::size_t>(size) > cursor.targetSize()) return false;
  }
  EncodedUnits encoded = encodeUnits(units, lengths);
  if (pairs.first != 0) encodePairs(encoded, units, pairs);
  appendEncoded<isTail>(cursor, encoded, lengths, inside);
  const std::size_t isBegun = pairs.first >> 31;
  cursor.source += (static_cast<std::size_t>(std::popcount(inside)) - isBegun) * kUnitSize;
  cursor.target -= isBegun * 2;
  return true;
}

/// Encodes up to a block at the end of the source. Units after the end count as NULs.
VEL_VECTOR inline void encodeTail(Cursor& cursor) {
  const std::size_t size = cursor.sourceSize();
  if (size == 0 || size > kBlock) return;
  const auto inside = static_cast<__mmask32>(lowest(size / kUnitSize));
  const __m512i units = _mm512_maskz_loadu_epi16(inside, cursor.source);
  const __m512i next = _mm512_maskz_loadu_epi16(inside >> 1, cursor.source + kUnitSize);
  encodeBlock<true>(cursor, units, next, inside);
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
  // The unit after a block is looked at.
  while (local.sourceSize() >= kBlock + kUnitSize && local.targetSize() >= kBlock) {
    const __m512i units = load(local.source);
    if (_mm512_test_epi16_mask(units, words(0xFF80)) == 0)
      encodeAscii(local, units);
    else if (_mm512_test_epi16_mask(units, words(0xF800)) == 0)
      encodeUpToTwoBytes(local, units);
    else if (local.targetSize() >= 2 * kBlock)
      encodeBlock<false>(local, units, load(local.source + kUnitSize), ~__mmask32{0});
    else
      break;
  }
  cursor = local;
}

}  // namespace

VEL_VECTOR void vectors::encodeUtf8(Cursor& cursor) noexcept {
  encodeUtf8Blocks(cursor);
  encodeTail(cursor);
}

}  // namespace vel::codepage

#endif
