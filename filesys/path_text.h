// Copies and builds names under the length limit. Names are cut here and nowhere else.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/short_text.h"
#include "platform/path_length.h"
#include "vel_include/vel_filesys.h"

namespace vel::filesys {

/// In characters, without the NUL.
inline constexpr std::size_t kMaxLength = VEL_MAX_PATH_LENGTH;
static_assert(kMaxLength == platform::kMaxPathLength);

/// Copies at most `length` and never more than kMaxLength characters, and a NUL, into a buffer for that many.
/// `text` may be part of the buffer, need not be NUL-terminated within `length`, and null counts as "".
/// Returns the length of the copy.
inline std::size_t copyBounded(char* buffer, const char* text, std::size_t length) noexcept {
  const std::size_t copied = text != nullptr ? boundedLength(text, std::min(length, kMaxLength)) : 0;
  if (copied != 0) std::memmove(buffer, text, copied);
  buffer[copied] = '\0';
  return copied;
}

/// Builds a name in a separate buffer, so that its parts may be parts of the name that it will replace. Text
/// that exceeds the capacity is cut.
template <std::size_t kCapacity = kMaxLength>
class PathText {
 public:
  const char* text() const noexcept { return text_; }
  std::size_t length() const noexcept { return length_; }
  /// The last character, or NUL in an empty name.
  char last() const noexcept { return length_ != 0 ? text_[length_ - 1] : '\0'; }

  void append(const char* text, std::size_t length) noexcept {
    const std::size_t fitting = std::min(length, kCapacity - length_);
    if (fitting != 0) std::memcpy(text_ + length_, text, fitting);
    cutTo(length_ + fitting);
  }
  void append(const char* text) noexcept { append(text, std::strlen(text)); }
  void append(char c) noexcept { append(&c, 1); }
  /// Shortens the name; `length` must not exceed the present one.
  void cutTo(std::size_t length) noexcept {
    length_ = length;
    text_[length] = '\0';
  }

 private:
  std::size_t length_ = 0;
  char text_[kCapacity + 1] = {};
};

}  // namespace vel::filesys
