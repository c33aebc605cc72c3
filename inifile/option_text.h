// An option under construction: name, value and comment in one buffer, each terminated. The value is cut to
// the room that the name leaves, the comment to what is left then.
#pragma once

#include <cstddef>

#include "inifile/text_rules.h"

namespace vel::inifile {

class OptionText {
 public:
  /// With an empty value and comment.
  explicit OptionText(Span name) noexcept;
  /// The name is every character that is no white space.
  static OptionText named(Span lineBeforeEqualSign) noexcept;

  /// Nothing follows a NUL.
  void addToValue(const char* text, std::size_t length) noexcept;
  void addToValue(char c) noexcept { addToValue(&c, 1); }
  /// Removes white space from the end of the value, down to this length.
  void trimValue(std::size_t shortest) noexcept;
  std::size_t valueLength() const noexcept { return end_ - value_; }

  /// Ends the value.
  void setComment(Span comment) noexcept;

  const char* data() const noexcept { return text_; }
  /// Everything, terminators included.
  std::size_t size() const noexcept { return size_; }
  std::size_t valueOffset() const noexcept { return value_; }
  std::size_t commentOffset() const noexcept { return comment_; }

 private:
  OptionText() noexcept = default;
  void startValue(std::size_t nameLength) noexcept;

  std::size_t value_;
  std::size_t end_;  ///< of the value
  std::size_t comment_;
  std::size_t size_;
  bool isEnded_ = false;
  char text_[kOptionTextSize];
};

}  // namespace vel::inifile
