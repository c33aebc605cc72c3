// Characters and names as INI files see them, independent of the locale: in a code page of one's own a byte
// of a UTF-8 character must not turn into white space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vel::inifile {

/// Name, value and comment of an option, with their terminators. An empty comment shares the value's.
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

/// Part of a text; the end stands for a terminator and is never passed.
struct Span {
  const char* begin;
  const char* end;

  bool isEmpty() const noexcept { return begin == end; }
  std::size_t length() const noexcept { return static_cast<std::size_t>(end - begin); }
  char first() const noexcept { return begin != end ? *begin : '\0'; }
  /// Behind `count` characters, or at the end.
  void skip(std::size_t count) noexcept { begin += count < length() ? count : length(); }
  void skipSpace() noexcept {
    while (begin != end && isSpace(*begin)) ++begin;
  }
  /// The first `c`, or null.
  const char* find(char c) const noexcept {
    return begin != end ? static_cast<const char*>(std::memchr(begin, c, length())) : nullptr;
  }
};

}  // namespace vel::inifile
