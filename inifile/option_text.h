// Builds the text of an option: name, value and comment in one buffer, each NUL-terminated. The value is cut
// to the room that the name leaves, and the comment to what is left after both.
#pragma once

#include <cstddef>

#include "inifile/text_rules.h"

namespace vel::inifile {

class OptionText {
 public:
  /// Starts with an empty value and an empty comment.
  explicit OptionText(Span name) noexcept;
  /// Sets the name to all characters that are not white space: "a b =" names the option "ab".
  static OptionText named(Span lineBeforeEqualSign) noexcept;

  /// Appends to the value. A NUL ends the value: nothing is appended after it.
  void addToValue(const char* text, std::size_t length) noexcept;
  void addToValue(char c) noexcept { addToValue(&c, 1); }
  /// Removes white space from the end of the value, but never makes it shorter than `shortest`.
  void trimValue(std::size_t shortest) noexcept;
  std::size_t valueLength() const noexcept { return end_ - value_; }

  /// Terminates the value and sets the comment.
  void setComment(Span comment) noexcept;

  const char* data() const noexcept { return text_; }
  /// Size of all three texts with their terminators.
  std::size_t size() const noexcept { return size_; }
  std::size_t valueOffset() const noexcept { return value_; }
  std::size_t commentOffset() const noexcept { return comment_; }

 private:
  OptionText() noexcept = default;
  void startValue(std::size_t nameLength) noexcept;

  std::size_t value_;
  std::size_t end_;  ///< the end of the value
  std::size_t comment_;
  std::size_t size_;
  bool isEnded_ = false;  ///< a NUL has ended the value
  char text_[kOptionTextSize];
};

}  // namespace vel::inifile
