// One character of UTF-16 or UTF-8 at a time. Whole texts are converted in codepage/.
#pragma once

#include <cstddef>

namespace vel {

/// U+FFFD, for what is ill-formed.
inline constexpr char32_t kReplacementCharacter = 0xFFFD;
/// The first character that UTF-16 writes as a pair of surrogates.
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

constexpr char32_t characterOfPair(char32_t high, char32_t low) noexcept {
  return (high << 10) + low - ((char32_t{0xD800} << 10) + 0xDC00 - kFirstSupplementary);
}
/// The surrogates of a character from kFirstSupplementary on.
constexpr char16_t highSurrogateOf(char32_t character) noexcept {
  return static_cast<char16_t>(0xD800 + ((character - kFirstSupplementary) >> 10));
}
constexpr char16_t lowSurrogateOf(char32_t character) noexcept {
  return static_cast<char16_t>(0xDC00 + (character & 0x3FF));
}

/// How many units the first character of a text has, 1 or 2. `length` is at least 1; an unpaired surrogate
/// counts as a character of one unit.
constexpr std::size_t utf16Length(const char16_t* text, std::size_t length) noexcept {
  return length > 1 && isHighSurrogate(text[0]) && isLowSurrogate(text[1]) ? 2 : 1;
}

inline constexpr std::size_t kMostUtf8Bytes = 4;

/// How many bytes UTF-8 needs for a character.
constexpr std::size_t utf8Length(char32_t character) noexcept {
  if (character < 0x80) return 1;
  if (character < 0x800) return 2;
  return character < kFirstSupplementary ? 3 : 4;
}

/// Writes a character as the utf8Length(character) bytes of UTF-8 and returns their number. Surrogates are
/// encoded like any other value.
constexpr std::size_t encodeUtf8(char32_t character, char* out) noexcept {
  constexpr char32_t kLeads[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
  const std::size_t size = utf8Length(character);
  for (std::size_t i = size - 1; i > 0; --i) {
    out[i] = static_cast<char>(0x80 | (character & 0x3F));
    character >>= 6;
  }
  out[0] = static_cast<char>(kLeads[size] | character);
  return size;
}

/// What is at the start of some bytes of UTF-8: a character, or the longest prefix of one.
struct Utf8Sequence {
  std::size_t size;
  bool isWhole;
  bool isCutOff;  ///< well-formed so far, but the text ends before the character does
};

/// Examines the first sequence as RFC 3629 defines it: no overlong forms, no surrogates, nothing above
/// U+10FFFF. `size` is at least 1, and so is the result's.
constexpr Utf8Sequence utf8SequenceAt(const unsigned char* text, std::size_t size) noexcept {
  const unsigned char lead = text[0];
  if (lead < 0x80) return {1, true, false};
  if (lead < 0xC2 || lead > 0xF4) return {1, false, false};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // What makes a form overlong, a surrogate or too large shows in the second byte.
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

}  // namespace vel
