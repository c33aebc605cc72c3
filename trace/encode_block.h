// Encodes trace texts with 6 bits a character, a block of 16 characters at a time: with SSE2 where the
// processor has it, in plain C++ elsewhere. Splitting texts into blocks and writing the bits is
// text_compression.cpp's work.
//
//   characters     H      i    ' '     B   ...
//   codes         18     45      0    12   ...  one per byte
//   bits      010010 101101 000000 001100  ...  first character in the highest bits
//
// The SSE2 version relies on trace texts being nearly all ASCII letters and blanks, and refuses other blocks:
//
// 1. (c | 0x20) - 'a' is the index of a letter in either case, 0 to 25. For every other byte it is larger as
//    an unsigned number, so one comparison finds the letters.
// 2. Adding an offset per case makes codes of these indexes. A blank's code is 0, so clearing all bytes that
//    are not letters is all that blanks need.
// 3. Shifts and a multiply-add pack 16 codes into 12 bytes, as decoders of Base64 do (W. Mula, D. Lemire:
//    Faster Base64 Encoding and Decoding Using AVX2 Instructions, ACM Transactions on the Web 12(3), 2018).
#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel::trace {

/// A character's code is its index here.
inline constexpr char kAlphabet[] = " ,&*:_~()<>ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
/// The code that is followed by the 8 bits of a character outside the alphabet.
inline constexpr std::uint8_t kEscape = 63;
inline constexpr std::int8_t kCodeOfUpperA = 11;
inline constexpr std::int8_t kCodeOfLowerA = 37;
static_assert(kAlphabet[kCodeOfUpperA] == 'A' && kAlphabet[kCodeOfLowerA] == 'a');
/// Set in the table entry of each character outside the alphabet; the entry's low six bits are kEscape.
inline constexpr std::uint8_t kEscapeMark = 0x80;
static_assert(sizeof kAlphabet - 1 == kEscape);

consteval std::array<std::uint8_t, 256> makeCodeTable() {
  std::array<std::uint8_t, 256> codes{};
  codes.fill(kEscapeMark | kEscape);
  for (std::uint8_t code = 0; code < kEscape; ++code)
    codes[static_cast<unsigned char>(kAlphabet[code])] = code;
  // Intentional: 0xFF is stored as a blank, without an escape, and so decodes as a blank.
  codes[255] = 0;
  return codes;
}

inline constexpr std::array<std::uint8_t, 256> kCodes = makeCodeTable();

/// The characters of a block.
inline constexpr std::size_t kBlockLength = 16;
/// Selects all characters of a block; bit n selects character n.
inline constexpr unsigned int kAllCharacters = 0xFFFF;

/// The codes of a block: those of eight characters each in the highest 48 bits of a word, zeros below.
struct EncodedBlock {
  std::uint64_t first;
  std::uint64_t second;
};

/// The 16 characters of a block, earlier ones in lower bytes.
struct CharacterBlock {
  std::uint64_t low;
  std::uint64_t high;
};

inline CharacterBlock loadBlock(const unsigned char* text) {
  CharacterBlock characters{};
  std::memcpy(&characters, text, sizeof characters);
  return characters;
}

/// Loads the `count` characters before `end`, fewer than 8, into the highest bytes of a
/// word; the bytes below are 0. Reads no other byte, without a loop: two words or three
/// characters that may overlap cover each count.
inline std::uint64_t loadTailWord(const unsigned char* end, std::size_t count) {
  const std::size_t padding = 8 * (8 - count);
  if (count >= 4) {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::memcpy(&first, end - count, sizeof first);
    std::memcpy(&last, end - sizeof last, sizeof last);
    return std::uint64_t{last} << 32 | static_cast<std::uint32_t>(std::uint64_t{first} << padding);
  }
  if (count == 0) return 0;
  const std::uint64_t first = *(end - count);
  const std::uint64_t middle = *(end - count + count / 2);
  const std::uint64_t last = *(end - 1);
  return first << padding | middle << (padding + 8 * (count / 2)) | last << 56;
}

/// Loads the `count` characters before `end`, at most 15, as the last ones of a block; the others are 0.
inline CharacterBlock loadTail(const unsigned char* end, std::size_t count) {
  static_assert(std::endian::native == std::endian::little);
  if (count < 8) return {0, loadTailWord(end, count)};
  CharacterBlock characters{};
  std::memcpy(&characters.high, end - 8, 8);
  characters.low = loadTailWord(end - 8, count - 8);
  return characters;
}

/// Encodes a block on any processor. Returns false unless all characters that `wanted` selects are in the
/// alphabet or 0xFF; `block` must not be used then. The codes of other characters are undefined.
inline bool encodeBlockPortably(const CharacterBlock& characters, unsigned int wanted, EncodedBlock& block) {
  unsigned char text[kBlockLength];
  std::memcpy(text, &characters, sizeof text);
  std::uint64_t halves[2] = {};
  unsigned int simple = 0;
  for (std::size_t i = 0; i < kBlockLength; ++i) {
    const std::uint8_t code = kCodes[text[i]];
    simple |= ((code & kEscapeMark) == 0 ? 1U : 0U) << i;
    halves[i / 8] = halves[i / 8] << 6 | (code & kEscape);
  }
  block = {halves[0] << 16, halves[1] << 16};
  return (simple & wanted) == wanted;
}

#if defined(__SSE2__)

/// Packs 16 codes, one per byte: two codes into 12 bits of a 16-bit lane, two of these into 24 bits of a
/// 32-bit lane, and two of these into 48 bits of a 64-bit lane, with earlier codes in higher bits.
inline EncodedBlock packCodes(__m128i codes) {
  const __m128i pairs =
      _mm_or_si128(_mm_srli_epi16(codes, 8), _mm_and_si128(_mm_slli_epi16(codes, 6), _mm_set1_epi16(0x0FC0)));
  // Shifts the earlier of two lanes left by 12 bits and adds the later one, in one instruction.
  const __m128i quads = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 1 << 12));
  const __m128i halves =
      _mm_slli_epi64(_mm_or_si128(_mm_slli_epi64(quads, 24), _mm_srli_epi64(quads, 32)), 16);
  return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(halves)),
          static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)))};
}

/// Encodes a block as encodeBlockPortably does, but returns false unless all characters that `wanted` selects
/// are letters or blanks. The caller encodes refused blocks character by character.
inline bool encodeBlock(const CharacterBlock& characters, unsigned int wanted, EncodedBlock& block) {
  const __m128i text =
      _mm_set_epi64x(static_cast<long long>(characters.high), static_cast<long long>(characters.low));
  const __m128i letterIndex = _mm_sub_epi8(_mm_or_si128(text, _mm_set1_epi8(' ')), _mm_set1_epi8('a'));
  // SSE2 compares signed bytes only: an unsigned index is at most 25 if it equals its minimum with 25.
  const __m128i isLetter = _mm_cmpeq_epi8(_mm_min_epu8(letterIndex, _mm_set1_epi8(25)), letterIndex);
  const __m128i isBlank = _mm_cmpeq_epi8(text, _mm_set1_epi8(' '));
  const auto simple = static_cast<unsigned int>(_mm_movemask_epi8(_mm_or_si128(isLetter, isBlank)));
  if ((simple & wanted) != wanted) return false;
  const __m128i lowerCaseOffset =
      _mm_and_si128(_mm_cmpgt_epi8(text, _mm_set1_epi8('Z')), _mm_set1_epi8(kCodeOfLowerA - kCodeOfUpperA));
  const __m128i codes =
      _mm_add_epi8(_mm_add_epi8(letterIndex, _mm_set1_epi8(kCodeOfUpperA)), lowerCaseOffset);
  block = packCodes(_mm_and_si128(codes, isLetter));
  return true;
}

#else

inline bool encodeBlock(const CharacterBlock& characters, unsigned int wanted, EncodedBlock& block) {
  return encodeBlockPortably(characters, wanted, block);
}

#endif

}  // namespace vel::trace
