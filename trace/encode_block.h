// The codes of trace texts, a block of characters at a time: with SSE2 where the processor has it, and in
// plain C++ for all others.
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

inline constexpr char kAlphabet[] = " ,&*:_~()<>ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
inline constexpr std::uint8_t kEscape = 63;
inline constexpr std::int8_t kCodeOfUpperA = 11;
inline constexpr std::int8_t kCodeOfLowerA = 37;
static_assert(kAlphabet[kCodeOfUpperA] == 'A' && kAlphabet[kCodeOfLowerA] == 'a');
/// Marks the escape in the table, so that one test finds it among many codes.
inline constexpr std::uint8_t kEscapeMark = 0x80;
static_assert(sizeof kAlphabet - 1 == kEscape);

consteval std::array<std::uint8_t, 256> makeCodeTable() {
  std::array<std::uint8_t, 256> codes{};
  codes.fill(kEscapeMark | kEscape);
  for (std::uint8_t code = 0; code < kEscape; ++code)
    codes[static_cast<unsigned char>(kAlphabet[code])] = code;
  // This byte reads back as a blank. Keep.
  codes[255] = 0;
  return codes;
}

inline constexpr std::array<std::uint8_t, 256> kCodes = makeCodeTable();

/// Characters that are encoded at once.
inline constexpr std::size_t kBlockLength = 16;
/// A bit for each character of a block.
inline constexpr unsigned int kAllCharacters = 0xFFFF;

/// The codes of a block of characters: of eight each, in the highest 48 bits, with 0 below.
struct EncodedBlock {
  std::uint64_t first;
  std::uint64_t second;
};

/// 16 characters, the earlier ones in the lower bytes.
struct CharacterBlock {
  std::uint64_t low;
  std::uint64_t high;
};

inline CharacterBlock loadBlock(const unsigned char* text) {
  CharacterBlock characters{};
  std::memcpy(&characters, text, sizeof characters);
  return characters;
}

/// The `count` characters before `end`, fewer than 8, as the last ones; 0 stands before them.
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

/// The same for up to 15 characters.
inline CharacterBlock loadTail(const unsigned char* end, std::size_t count) {
  static_assert(std::endian::native == std::endian::little);
  if (count < 8) return {0, loadTailWord(end, count)};
  CharacterBlock characters{};
  std::memcpy(&characters.high, end - 8, 8);
  characters.low = loadTailWord(end - 8, count - 8);
  return characters;
}

/// Codes a block on any processor. False unless the `wanted` characters, a bit each, are in the alphabet.
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

/// Two codes become 12 bits, two of these 24, and two of these 48; the earlier ones stand higher.
inline EncodedBlock packCodes(__m128i codes) {
  const __m128i pairs =
      _mm_or_si128(_mm_srli_epi16(codes, 8), _mm_and_si128(_mm_slli_epi16(codes, 6), _mm_set1_epi16(0x0FC0)));
  const __m128i quads = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 1 << 12));
  const __m128i halves =
      _mm_slli_epi64(_mm_or_si128(_mm_slli_epi64(quads, 24), _mm_srli_epi64(quads, 32)), 16);
  return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(halves)),
          static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)))};
}

/// Codes a block, mostly one of a text. False unless the `wanted` characters, a bit each, are letters and
/// blanks, as nearly all are.
inline bool encodeBlock(const CharacterBlock& characters, unsigned int wanted, EncodedBlock& block) {
  const __m128i text =
      _mm_set_epi64x(static_cast<long long>(characters.high), static_cast<long long>(characters.low));
  const __m128i place = _mm_sub_epi8(_mm_or_si128(text, _mm_set1_epi8(' ')), _mm_set1_epi8('a'));
  const __m128i isLetter = _mm_cmpeq_epi8(_mm_min_epu8(place, _mm_set1_epi8(25)), place);
  const __m128i isBlank = _mm_cmpeq_epi8(text, _mm_set1_epi8(' '));
  const auto simple = static_cast<unsigned int>(_mm_movemask_epi8(_mm_or_si128(isLetter, isBlank)));
  if ((simple & wanted) != wanted) return false;
  const __m128i ofLower =
      _mm_and_si128(_mm_cmpgt_epi8(text, _mm_set1_epi8('Z')), _mm_set1_epi8(kCodeOfLowerA - kCodeOfUpperA));
  const __m128i codes = _mm_add_epi8(_mm_add_epi8(place, _mm_set1_epi8(kCodeOfUpperA)), ofLower);
  block = packCodes(_mm_and_si128(codes, isLetter));
  return true;
}

#else

inline bool encodeBlock(const CharacterBlock& characters, unsigned int wanted, EncodedBlock& block) {
  return encodeBlockPortably(characters, wanted, block);
}

#endif

}  // namespace vel::trace
