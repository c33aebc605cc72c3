// The 6-bit code of trace texts. Codes follow one another without gaps, high bits first; bits of 1 fill the
// last byte:
//
//   "Hi"   H = 18, i = 45                          010010 101101 1111
//   "1"    63 and the 8 bits of '1'                111111 00110001 11
#pragma once

#include <cstddef>

namespace vel::trace {

/// The most bytes that a compressed text takes, and the most characters that fit into them.
inline constexpr std::size_t kLongestCompressed = 255;
inline constexpr std::size_t kLongestPlain = kLongestCompressed * 8 / 6;
/// Bits are stored by the word.
inline constexpr std::size_t kSlack = 8;

/// Writes at most kLongestCompressed bytes and returns their number; what does not fit is cut. `out` has room
/// for kSlack bytes more, which may be overwritten.
std::size_t compress(const char* text, std::size_t length, unsigned char* out) noexcept;

/// Writes at most `length` * 8 / 6 characters and a terminator, and returns how many before it. `out` has
/// room for 8 characters more than these.
std::size_t decompress(const unsigned char* stored, std::size_t length, char* out) noexcept;

}  // namespace vel::trace
