// The limits of names and lines in INI files, the classes of characters, and spans of text. The classes do
// not depend on the locale: in some code pages a byte of a UTF-8 character would count as white space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel::inifile {

/// Room for name, value and comment of an option with their terminators. An empty comment shares the
/// terminator of the value, so the longest name leaves room for two.
inline constexpr std::size_t kOptionTextSize = 1024;
inline constexpr std::size_t kMaxNameLength = kOptionTextSize - 2;
inline constexpr std::size_t kMaxLineLength = 1023;

constexpr bool isSpace(char c) noexcept {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool isControl(char c) noexcept {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

/// The byte order mark of UTF-8, which some editors write at the start of a file.
inline constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";

/// Part of a text. Reading at the end gives NUL, and nothing moves beyond it.
struct Span {
  const char* begin;
  const char* end;

  bool isEmpty() const noexcept { return begin == end; }
  std::size_t length() const noexcept { return static_cast<std::size_t>(end - begin); }
  char first() const noexcept { return begin != end ? *begin : '\0'; }
  /// Skips `count` characters, or all that there are.
  void skip(std::size_t count) noexcept { begin += count < length() ? count : length(); }
  void skipSpace() noexcept {
    while (begin != end && isSpace(*begin)) ++begin;
  }
  /// Skips a byte order mark at the beginning.
  void skipUtf8Mark() noexcept {
    constexpr std::size_t kLength = sizeof kUtf8Mark - 1;
    if (length() >= kLength && std::memcmp(begin, kUtf8Mark, kLength) == 0) begin += kLength;
  }
  /// Returns the position of the first `c`, or null.
  const char* find(char c) const noexcept {
    return begin != end ? static_cast<const char*>(std::memchr(begin, c, length())) : nullptr;
  }
};

}  // namespace vel::inifile
