// Texts of names under the length limit: the one owner of cutting them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/short_text.h"
#include "vel_include/vel_filesys.h"

namespace vel::filesys {

inline constexpr std::size_t kMaxLength = VEL_MAX_PATH_LENGTH;

/// Copies at most `length` and never more than 260 characters into a buffer of 261, which `text` may
/// lie in. Returns the length of the copy.
inline std::size_t copyBounded(char* buffer, const char* text, std::size_t length) noexcept {
  const std::size_t copied = text != nullptr ? boundedLength(text, std::min(length, kMaxLength)) : 0;
  if (copied != 0) std::memmove(buffer, text, copied);
  buffer[copied] = '\0';
  return copied;
}

/// A name under construction, apart from the texts that it is made of. Whatever exceeds the
/// capacity is cut.
template <std::size_t kCapacity = kMaxLength>
class PathText {
 public:
  const char* text() const noexcept { return text_; }
  std::size_t length() const noexcept { return length_; }
  char last() const noexcept { return length_ != 0 ? text_[length_ - 1] : '\0'; }

  void append(const char* text, std::size_t length) noexcept {
    const std::size_t fitting = std::min(length, kCapacity - length_);
    if (fitting != 0) std::memcpy(text_ + length_, text, fitting);
    cutTo(length_ + fitting);
  }
  void append(const char* text) noexcept { append(text, std::strlen(text)); }
  void append(char c) noexcept { append(&c, 1); }
  void cutTo(std::size_t length) noexcept {
    length_ = length;
    text_[length] = '\0';
  }

 private:
  std::size_t length_ = 0;
  char text_[kCapacity + 1] = {};
};

}  // namespace vel::filesys
