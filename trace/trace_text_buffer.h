// The formatter's output buffer. It collects the text of many entries, so that the stream, whose every call
// costs more than formatting a number, is called once for them.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string_view>

#include "base/digits.h"
#include "base/short_text.h"

namespace vel::trace {

/// Writes numbers as `stream` would at construction (precision, fixed or scientific), but without its locale.
/// Flush it before it is destroyed; what is left is dropped.
class TextBuffer {
 public:
  explicit TextBuffer(std::ostream& stream)
      : stream_(&stream),
        floatFormat_(formatOf(stream.flags() & std::ios::floatfield)),
        precision_(static_cast<int>(
            std::clamp(stream.precision(), std::streamsize{0}, std::streamsize{kMaxPrecision}))) {}
  /// Collects a single value, of less than kCapacity characters, with the number format of a new stream. Do
  /// not flush it; see text().
  TextBuffer() : stream_(nullptr), floatFormat_(std::chars_format::general), precision_(6) {}
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  static constexpr std::size_t kCapacity = std::size_t{16} * 1024;

  /// Returns room for `size` characters, at most kCapacity. Write there, then commit() the end of what was
  /// written; the rest of the room is given up.
  char* reserve(std::size_t size) {
    if (kCapacity - used_ < size) flush();
    return text_ + used_;
  }
  void commit(const char* end) { used_ = static_cast<std::size_t>(end - text_); }

  void put(char c) {
    *reserve(1) = c;
    ++used_;
  }
  void append(std::string_view text) {
    while (!text.empty()) {
      const std::size_t part = std::min(text.size(), kCapacity);
      commit(write(reserve(part), text.substr(0, part)));
      text.remove_prefix(part);
    }
  }
  void decimal(std::uint64_t number) { commit(writeDecimal(reserve(kMaxNumberLength), number)); }
  void decimalSigned(std::int64_t number) {
    if (number < 0) put('-');
    const auto magnitude = static_cast<std::uint64_t>(number);
    decimal(number < 0 ? 0 - magnitude : magnitude);
  }
  /// Writes a floating-point number with the stream's precision and format.
  template <typename Float>
  void decimalFloat(Float number) {
    const std::size_t digits = floatFormat_ == std::chars_format::fixed ? kMaxDigits : kMaxNumberLength;
    const std::size_t room = digits + static_cast<std::size_t>(precision_);
    char* const out = reserve(room);
    commit(std::to_chars(out, out + room, number, floatFormat_, precision_).ptr);
  }

  /// What has not been flushed.
  std::string_view text() const { return {text_, used_}; }

  void flush() {
    const std::size_t size = used_;
    used_ = 0;
    stream_->write(text_, static_cast<std::streamsize>(size));
  }

  // Low-level functions: they write to memory with enough room and return the end of what they wrote. Several
  // in a row are faster than append functions, which reserve and commit for each piece.

  /// Whether `size` characters fit after `end`.
  bool hasRoom(const char* end, std::size_t size) const {
    return static_cast<std::size_t>(text_ + kCapacity - end) >= size;
  }
  static char* write(char* out, std::string_view text) {
    if (text.size() <= kBlock)
      copyShort(out, text.data(), text.size());
    else
      std::memcpy(out, text.data(), text.size());
    return out + text.size();
  }
  /// Copies a short text in whole blocks of kBlock: reads and writes up to the end of the last block.
  static char* writeBlocks(char* out, const char* text, std::size_t length) {
    std::size_t done = 0;
    do std::memcpy(out + done, text + done, kBlock);
    while ((done += kBlock) < length);
    return out + length;
  }
  static constexpr std::size_t kBlock = 16;

  // Not std::to_chars, which would make the run-time library's digit tables exported names of this library.
  static char* writeDecimal(char* out, std::uint64_t number) {
    int digits = 1;
    for (std::uint64_t limit = 10; number >= limit && digits < 20; limit *= 10) ++digits;
    char* const end = out + digits;
    char* place = end;
    for (; number >= 100; number /= 100) writeDecimalPair(place -= 2, number % 100);
    if (number >= 10)
      writeDecimalPair(place - 2, number);
    else
      place[-1] = static_cast<char>('0' + number);
    return end;
  }
  static constexpr std::size_t kMaxNumberLength = 32;

 private:
  static constexpr std::chars_format formatOf(std::ios::fmtflags flags) {
    if (flags == std::ios::fixed) return std::chars_format::fixed;
    return flags == std::ios::scientific ? std::chars_format::scientific : std::chars_format::general;
  }
  static constexpr int kMaxPrecision = 8000;
  static constexpr std::size_t kMaxDigits = 5000;  ///< of a long double before the decimal point

  std::ostream* stream_;
  std::chars_format floatFormat_;
  int precision_;
  std::size_t used_ = 0;
  char text_[kCapacity];
};

}  // namespace vel::trace
