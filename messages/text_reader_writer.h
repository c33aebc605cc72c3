// A bounded reader and a bounded writer for insert_formatter.cpp: the reader consumes a text from left to
// right, the writer never writes past its buffer. The syntax of the texts is not known here.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "base/ascii.h"
#include "base/short_text.h"

namespace vel::messages {

/// Appends a decimal digit to a number. Saturates at the type's maximum instead of overflowing.
template <typename Number>
Number appendDigit(Number number, char digit) noexcept {
  constexpr Number kMax = std::numeric_limits<Number>::max();
  const Number value = static_cast<Number>(digit - '0');
  return number > (kMax - value) / 10 ? kMax : static_cast<Number>(number * 10 + value);
}

// StopSet expects the first character of a word in its lowest byte.
static_assert(std::endian::native == std::endian::little);

/// A set of characters at which copying stops.
template <char... kCharacters>
struct StopSet {
  static bool contains(char c) noexcept { return ((c == kCharacters) || ...); }
  /// Returns how many of eight characters, the first one in the lowest byte, precede the first stop; 8 if
  /// none of them is a stop. Uses the test for zero bytes of a word by A. Mycroft (S. E. Anderson, Bit
  /// Twiddling Hacks: "Determine if a word has a zero byte"). It may also mark bytes above a zero byte,
  /// because of the borrow, but the lowest mark is always right.
  static std::size_t countBefore(std::uint64_t eight) noexcept {
    return static_cast<std::size_t>(std::countr_zero((markZeroBytes(eight ^ kOnes * kCharacters) | ...))) / 8;
  }

 private:
  static constexpr std::uint64_t kOnes = 0x0101010101010101;
  static std::uint64_t markZeroBytes(std::uint64_t eight) noexcept {
    return (eight - kOnes) & ~eight & kOnes << 7;
  }
};

/// Consumes a part of a text from left to right. Does not own the text.
class TextReader {
 public:
  TextReader(const char* text, std::size_t length) noexcept : current_(text), end_(text + length) {}

  bool atEnd() const noexcept { return current_ == end_; }
  /// Consumes a character; not at the end.
  char read() noexcept { return *current_++; }
  const char* data() const noexcept { return current_; }
  std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - current_); }
  void skip(std::size_t count) noexcept { current_ += count; }
  /// Consumes the next character if it is the expected one; otherwise returns false.
  bool consumeIf(char expected) noexcept {
    if (atEnd() || *current_ != expected) return false;
    ++current_;
    return true;
  }
  bool atDigit() const noexcept { return !atEnd() && isAsciiDigit(*current_); }
  /// Consumes a decimal number and returns its value, saturated; 0 if no digit follows.
  std::size_t parseNumber() noexcept {
    std::size_t number = 0;
    while (atDigit()) number = appendDigit(number, read());
    return number;
  }

  /// Consumes the text up to the next `mark` and the mark itself; `part` is the text before it. Returns false
  /// and consumes nothing if the text does not contain the mark.
  bool readUntil(char mark, TextReader& part) noexcept {
    const char* found = std::find(current_, end_, mark);
    if (found == end_) return false;
    part = TextReader(current_, static_cast<std::size_t>(found - current_));
    current_ = found + 1;
    return true;
  }

 private:
  const char* current_;
  const char* end_;
};

/// Appends to a buffer. A text that does not fit is not written, not even in part. From then on overflowed()
/// is true and nothing more is written.
class TextWriter {
 public:
  TextWriter(char* out, std::size_t capacity) noexcept : out_(out), capacity_(capacity) {}

  void put(char c) noexcept {
    if (fits(1)) out_[length_++] = c;
  }
  void lineBreak() noexcept {
    put('\r');
    put('\n');
  }
  void repeat(char c, std::size_t count) noexcept {
    if (!fits(count)) return;
    std::memset(out_ + length_, c, count);
    length_ += count;
  }
  void append(const char* text, std::size_t count) noexcept {
    if (!fits(count)) return;
    std::memcpy(out_ + length_, text, count);
    length_ += count;
  }
  /// Appends at most `limit` characters of a NUL-terminated string.
  void appendText(const char* text, std::size_t limit) noexcept { append(text, boundedLength(text, limit)); }
  /// Copies characters from the text, consuming them, up to the first stop, the end of the text, or the end
  /// of the buffer. If the buffer ends first, the character that did not fit is consumed too, and
  /// overflowed() is true. Call only while overflowed() is false.
  template <typename StopCharacters>
  void copyUntilAny(TextReader& text, StopCharacters stops) noexcept {
    while (text.size() >= 8 && room() >= 8) {
      const std::size_t count = stops.countBefore(copyWordAhead(text.data()));
      length_ += count;
      text.skip(count);
      if (count != 8) return;
    }
    while (!text.atEnd() && !stops.contains(*text.data()) && !overflowed_) put(text.read());
  }
  /// Returns how many characters still fit.
  std::size_t room() const noexcept { return capacity_ - length_; }
  bool overflowed() const noexcept { return overflowed_; }
  std::size_t length() const noexcept { return length_; }

 private:
  /// Copies eight characters to the write position without advancing it, and returns them, the first one in
  /// the lowest byte.
  std::uint64_t copyWordAhead(const char* text) noexcept {
    std::uint64_t eight = 0;
    std::memcpy(&eight, text, sizeof eight);
    std::memcpy(out_ + length_, &eight, sizeof eight);
    return eight;
  }

  /// Returns whether `count` more characters may be written; if not, sets overflowed().
  bool fits(std::size_t count) noexcept {
    overflowed_ = overflowed_ || count > room();
    return !overflowed_;
  }

  char* out_;
  std::size_t capacity_;
  std::size_t length_ = 0;
  bool overflowed_ = false;
};

}  // namespace vel::messages
