// Encodes and decodes one character of UTF-16 or UTF-8 at a time. Whole texts are converted in codepage/.
#pragma once

#include <cstddef>
#include <string_view>

namespace vel {

/// U+FFFD, which replaces ill-formed sequences.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;
/// The first character that UTF-16 encodes as a pair of surrogates.
inline constexpr char32_t kFirstSupplementary = 0x10000;

constexpr bool isHighSurrogate(char32_t unit) noexcept {
  return (unit & 0xFFFFFC00) == 0xD800;
}
constexpr bool isLowSurrogate(char32_t unit) noexcept {
  return (unit & 0xFFFFFC00) == 0xDC00;
}
constexpr bool isSurrogate(char32_t unit) noexcept {
  return (unit & 0xFFFFF800) == 0xD800;
}

/// The amount by which (high << 10) + low of a surrogate pair exceeds its character.
inline constexpr char32_t kPairOffset = (char32_t{0xD800} << 10) + 0xDC00 - kFirstSupplementary;

constexpr char32_t decodeSurrogatePair(char32_t high, char32_t low) noexcept {
  return (high << 10) + low - kPairOffset;
}
/// The surrogates of a character that is at least kFirstSupplementary.
constexpr char16_t highSurrogateOf(char32_t character) noexcept {
  return static_cast<char16_t>(0xD800 + ((character - kFirstSupplementary) >> 10));
}
constexpr char16_t lowSurrogateOf(char32_t character) noexcept {
  return static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

/// Returns the number of units of the first character, 1 or 2. `length` is at least 1. An unpaired surrogate
/// counts as a character of one unit.
constexpr std::size_t unitsOfFirstCharacter(const char16_t* text, std::size_t length) noexcept {
  return length > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]) ? 2 : 1;
}

inline constexpr std::size_t kMaxUtf8Bytes = 4;

/// Returns the number of bytes that UTF-8 needs for a character.
constexpr std::size_t utf8Length(char32_t character) noexcept {
  if (character < 0x80) return 1;
  if (character < 0x800) return 2;
  return character < kFirstSupplementary ? 3 : 4;
}

/// Encodes a character as utf8Length(character) bytes and returns their number. Surrogates are encoded like
/// other values.
constexpr std::size_t encodeUtf8(char32_t character, char* out) noexcept {
  // Lead byte bits by length; index 0 is unused.
  constexpr char32_t kLeads[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
  const std::size_t size = utf8Length(character);
  for (std::size_t i = size - 1; i > 0; --i) {
    out[i] = static_cast<char>(0x80 | (character & 0x3F));
    character >>= 6;
  }
  out[0] = static_cast<char>(kLeads[size] | character);
  return size;
}

/// The first sequence of some UTF-8 bytes: a whole character, the longest prefix of one (Unicode: maximal
/// subpart), or one byte that cannot begin a character.
struct Utf8Sequence {
  std::size_t size;
  bool isValid;      ///< a whole character
  bool isTruncated;  ///< a prefix: the text ends before the character does
};

/// Examines the first sequence as RFC 3629 defines it: no overlong forms, no surrogates, nothing above
/// U+10FFFF. `size` must be at least 1; so is the size of the result.
constexpr Utf8Sequence utf8SequenceAt(const unsigned char* text, std::size_t size) noexcept {
  const unsigned char lead = text[0];
  if (lead < 0x80) return {1, true, false};
  if (lead < 0xC2 || lead > 0xF4) return {1, false, false};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // Overlong forms, surrogates and values above U+10FFFF all show in the second byte, so only its range
  // depends on the lead byte.
  unsigned char first = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned char last = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  for (std::size_t i = 1; i < length; ++i) {
    if (i == size) return {i, false, true};
    if (text[i] < first || text[i] > last) return {i, false, false};
    first = 0x80;
    last = 0xBF;
  }
  return {length, true, false};
}

/// Decodes the bytes of one valid character.
constexpr char32_t decodeUtf8(std::string_view bytes) noexcept {
  const std::size_t size = bytes.size();
  const auto byteAt = [bytes](std::size_t i) { return static_cast<char32_t>(bytes[i]) & 0xFF; };
  char32_t character = size == 1 ? byteAt(0) : byteAt(0) & (0x3FU >> (size - 1));
  for (std::size_t i = 1; i < size; ++i) character = character << 6 | (byteAt(i) & 0x3F);
  return character;
}

}  // namespace vel
