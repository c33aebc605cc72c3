// UTF-8 to UCS-2 by vectors, 64 bytes at a time. Every byte is decoded as if a character began there, from
// itself and the two bytes after it, which unaligned loads provide. Most of these units are garbage: the
// lanes of bytes that do begin a character are compressed to the front and stored.
//
//   bytes    41  E2  82  AC  42
//   trail     .   .   1   1   .
//   lanes   0041 20AC -   -  0042     compressed: 0041 20AC 0042
//
// Characters of four bytes become two units, the surrogates, in the lanes of their first and second byte.
// Sums and constants are those of utf8_decoder.cpp. For a published algorithm of this kind see R. Clausecker
// and D. Lemire, "Transcoding Unicode Characters with AVX-512 Instructions" (2023).
#include "codepage/kernels/avx512_vectors.h"

#if defined(__x86_64__)

#include <algorithm>

namespace vel::codepage {

using namespace vectors;

namespace {

/// Masks with a bit for each byte of a block.
struct Leads {
  __mmask64 trail;  ///< 80 to BF
  __mmask64 two;    ///< C0 and more: at least two bytes
  __mmask64 three;  ///< E0 and more
  __mmask64 four;   ///< F0 and more
};

/// The block, and for each of its bytes the next one and the one after that.
struct Window {
  __m512i at[3];
};

/// Returns which of the three bytes after the block must be trailing bytes of its last character.
inline unsigned int trailsAfterBlock(const Leads& leads) {
  const auto trailsAfter =
      static_cast<unsigned int>((leads.two >> 63) | (leads.three >> 62) | (leads.four >> 61));
  return trailsAfter & 7;
}

/// Decodes half a block to one unit for each byte. The sums are those of the portable decoder modulo 2^16, in
/// which the constant for three bytes, E2080, is 2080.
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
  // The high surrogate is in the lane of the lead byte. The low one is in the lane of the second byte, made
  // of the third and the fourth. D7C0 is D800 - (10000 >> 10): UTF-16 subtracts 10000 from the character.
  const __m512i upper = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(at[0], words(7)), 8),
                                        _mm512_slli_epi16(_mm512_and_si512(at[1], words(0x3F)), 2));
  const __m512i high = _mm512_or_si512(upper, _mm512_srli_epi16(_mm512_and_si512(at[2], words(0x3F)), 4));
  const __m512i low = _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(at[1], words(0xF)), 6),
                                      _mm512_and_si512(at[2], words(0x3F)));
  units = _mm512_mask_add_epi16(units, mask(leads.four), high, words(0xD7C0));
  return _mm512_mask_add_epi16(units, mask(leads.four << 1), low, words(0xDC00));
}

/// Whether trailing bytes are exactly where lead bytes require them, including the bytes after the block.
/// `third` has the bytes from the block's fourth on. Overlong forms and surrogates pass, because their sums
/// are correct.
VEL_VECTOR inline bool isWellFormed(const Window& window, const Leads& leads, unsigned int trailsAfter,
                                    __m512i third) {
  if (leads.trail != ((leads.two << 1) | (leads.three << 2) | (leads.four << 3))) return false;
  const __mmask64 next = _mm512_cmplt_epi8_mask(third, bytes(0xC0));
  if ((trailsAfter & ~static_cast<unsigned int>(next >> 61)) != 0) return false;
  // Sequences of five and six bytes, and characters of four bytes that need fewer, are left to the portable
  // decoder.
  if (leads.four == 0) return true;
  const __mmask64 isLong = _mm512_cmpge_epu8_mask(window.at[0], bytes(0xF8));
  const __mmask64 isF0 = _mm512_cmpeq_epi8_mask(window.at[0], bytes(0xF0));
  return (isLong | _mm512_mask_cmplt_epu8_mask(isF0, window.at[1], bytes(0x90))) == 0;
}

/// Writes the units whose bits are set, and clobbers the rest of 64 bytes unless this is the tail.
template <bool isTail>
VEL_VECTOR inline void storeUnits(Cursor& cursor, __m512i units, __mmask32 lanes) {
  const auto count = static_cast<unsigned int>(std::popcount(lanes));
  const __m512i compressed = _mm512_maskz_compress_epi16(lanes, units);
  if constexpr (isTail)
    _mm512_mask_storeu_epi16(cursor.target, static_cast<__mmask32>(lowest(count)), compressed);
  else
    store(cursor.target, compressed);
  cursor.target += kUnitSize * count;
}

VEL_VECTOR inline void decodeAscii(Cursor& cursor, __m512i block) {
  store(cursor.target, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)));
  store(cursor.target + kBlock, _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)));
  cursor.source += kBlock;
  cursor.target += kBlock * kUnitSize;
}

/// Decodes the characters that begin in the first `count` bytes of the block, and returns true; returns
/// false, with nothing done, if a sequence is ill-formed or the target too small. `third` has the bytes from
/// the block's fourth on.
template <bool isTail>
VEL_VECTOR inline bool decodeBlock(Cursor& cursor, const Window& window, __m512i third, std::size_t count) {
  const __m512i block = window.at[0];
  Leads leads{_mm512_cmplt_epi8_mask(block, bytes(0xC0)), _mm512_cmpge_epu8_mask(block, bytes(0xC0)),
              _mm512_cmpge_epu8_mask(block, bytes(0xE0)), _mm512_cmpge_epu8_mask(block, bytes(0xF0))};
  const unsigned int trailsAfter = trailsAfterBlock(leads);
  if (!isWellFormed(window, leads, trailsAfter, third)) return false;
  std::size_t size = count + static_cast<std::size_t>(std::popcount(trailsAfter));
  __mmask64 lanes = ~leads.trail | (leads.four << 1);
  // If a character of four bytes begins with the last byte, its low surrogate does not have a lane in this
  // block. The next block decodes the character.
  if ((leads.four >> 63) != 0) {
    size = kBlock - 1;
    lanes &= ~(1ULL << 63);
  }
  if constexpr (isTail) {
    lanes &= lowest(count);
    if (static_cast<std::size_t>(std::popcount(lanes)) * kUnitSize > cursor.targetSize()) return false;
  }
  storeUnits<isTail>(cursor, decodeHalf(window, leads, 0), static_cast<__mmask32>(lanes));
  storeUnits<isTail>(cursor, decodeHalf(window, leads, 1), static_cast<__mmask32>(lanes >> 32));
  cursor.source += size;
  return true;
}

/// Decodes what the blocks leave at the end of the source. Bytes after the end count as NULs.
VEL_VECTOR inline void decodeTail(Cursor& cursor) {
  const auto from = [&cursor](std::size_t place) VEL_VECTOR {
    const std::size_t size = cursor.sourceSize();
    return _mm512_maskz_loadu_epi8(size > place ? lowest(size - place) : 0, cursor.source + place);
  };
  while (cursor.sourceSize() != 0 && cursor.sourceSize() < kBlock + 3)
    if (!decodeBlock<true>(cursor, {{from(0), from(1), from(2)}}, from(3),
                           std::min(cursor.sourceSize(), kBlock)))
      return;
}

VEL_VECTOR void decodeUtf8Blocks(Cursor& cursor) noexcept {
  Cursor local = cursor;
  while (local.sourceSize() >= kBlock + 3 && local.targetSize() >= kBlock * kUnitSize) {
    const __m512i block = load(local.source);
    if (_mm512_movepi8_mask(block) == 0)
      decodeAscii(local, block);
    else if (!decodeBlock<false>(local, {{block, load(local.source + 1), load(local.source + 2)}},
                                 load(local.source + 3), kBlock))
      break;
  }
  cursor = local;
}

}  // namespace

VEL_VECTOR void vectors::decodeUtf8(Cursor& cursor) noexcept {
  decodeUtf8Blocks(cursor);
  decodeTail(cursor);
}

}  // namespace vel::codepage

#endif
