// Patterns for function names and messages: wildcards, or a regular expression between slashes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/veltrace/regular_expression.h"

namespace vel::veltrace {

class TextPattern {
 public:
  /// "/.../" is a regular expression, which matches anywhere in a text; anything else has wildcards and
  /// matches the whole text. Returns false for an invalid regular expression, with the position in `pattern`,
  /// from 1.
  bool parse(std::string_view pattern, std::size_t& position);
  bool isSet() const { return kind_ != Kind::None; }
  /// `text` is NUL-terminated after its end.
  bool matches(std::string_view text) const;

 private:
  enum class Kind { None, Whole, Wildcards, Expression };
  Kind kind_ = Kind::None;
  std::string wildcards_;
  RegularExpression expression_;
};

/// Replaces "\xNN", "\n", "\t", "\r" and "\\" by bytes. Returns false for any other backslash, with its
/// position from 1.
bool parseBytes(std::string_view text, std::string& bytes, std::size_t& position);

}  // namespace vel::veltrace
