// Builds the text of one option in a buffer of fixed size:
//
//   name NUL value NUL comment NUL        value_ and comment_ are the offsets of the last two
//   name NUL value NUL                    an empty comment shares the terminator of the value
//
// Most options do not have a comment, and the shared terminator saves a byte for each. Texts that do not fit
// are cut here, and nowhere else.
#include "inifile/option_text.h"

#include <algorithm>
#include <cstring>

namespace vel::inifile {

OptionText::OptionText(Span name) noexcept {
  const std::size_t length = std::min(name.length(), kMaxNameLength);
  if (length != 0) std::memcpy(text_, name.begin, length);
  startValue(length);
}

OptionText OptionText::named(Span line) noexcept {
  OptionText option;
  std::size_t length = 0;
  for (; !line.isEmpty() && length < kMaxNameLength; ++line.begin)
    if (!isSpace(*line.begin)) option.text_[length++] = *line.begin;
  option.startValue(length);
  return option;
}

void OptionText::startValue(std::size_t nameLength) noexcept {
  text_[nameLength] = '\0';
  value_ = nameLength + 1;
  end_ = value_;
  setComment({});
}

void OptionText::addToValue(const char* text, std::size_t length) noexcept {
  if (isEnded_) return;
  // One byte stays free for the terminator.
  const Span added{text, text + std::min(length, kOptionTextSize - 1 - end_)};
  const char* const nul = added.find('\0');
  isEnded_ = nul != nullptr;
  const std::size_t count = isEnded_ ? static_cast<std::size_t>(nul - text) : added.length();
  if (count != 0) std::memcpy(text_ + end_, text, count);
  end_ += count;
}

void OptionText::trimValue(std::size_t shortest) noexcept {
  while (valueLength() > shortest && isSpace(text_[end_ - 1])) --end_;
}

void OptionText::setComment(Span comment) noexcept {
  text_[end_] = '\0';
  comment_ = end_;
  size_ = end_ + 1;
  // A comment needs room for one character and its terminator; otherwise it is dropped.
  if (comment.isEmpty() || size_ + 1 >= kOptionTextSize) return;
  const std::size_t length = std::min(comment.length(), kOptionTextSize - size_ - 1);
  comment_ = size_;
  std::memcpy(text_ + comment_, comment.begin, length);
  text_[comment_ + length] = '\0';
  size_ = comment_ + length + 1;
}

}  // namespace vel::inifile
