// Compresses trace texts to 6 bits a character. Codes are stored without gaps, high bits first, and the last
// byte is filled with bits of 1:
//
//   "Hi"   H = 18, i = 45                          010010 101101 1111
//   "1"    the escape, 63, and the 8 bits of '1'   111111 00110001 11
//
// The alphabet is in encode_block.h.
#pragma once

#include <cstddef>

namespace vel::trace {

/// The largest size of a compressed text in bytes, and the most characters that fit into it.
inline constexpr std::size_t kMaxCompressedSize = 255;
inline constexpr std::size_t kMaxPlainSize = kMaxCompressedSize * 8 / 6;
/// How many bytes after a text may be overwritten, because bits are stored a word at a time.
inline constexpr std::size_t kSlack = 8;

/// Compresses `length` characters into at most kMaxCompressedSize bytes and returns the number of bytes.
/// Characters that do not fit are dropped. `out` has room for kMaxCompressedSize + kSlack bytes.
std::size_t compress(const char* text, std::size_t length, unsigned char* out) noexcept;

/// Decompresses `length` bytes into a NUL-terminated string of at most `length` * 8 / 6 characters, and
/// returns its length. `out` has room for 8 characters more. Any bytes are accepted; an escape whose
/// character is incomplete ends the text.
std::size_t decompress(const unsigned char* stored, std::size_t length, char* out) noexcept;

}  // namespace vel::trace
