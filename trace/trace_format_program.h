// A format string taken apart once, so that each entry costs only what it shows: a list of steps, each of
// them a piece of text and the letter of a directive behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/allocator.h"

namespace vel::trace {

struct FormatStep {
  std::uint32_t start;      ///< of the text before the directive, within the texts
  std::uint32_t length;     ///< of that text
  std::uint32_t directive;  ///< the place of its letter, or kNone

  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
};

class FormatProgram {
 public:
  /// Directives are numbered by their letters' places in `letters`. Without indentation "%n" is the text of a
  /// line break. The memory manager's failures throw.
  FormatProgram(const char* format, std::string_view letters, bool indented);

  const FormatStep* begin() const { return steps_.data(); }
  const FormatStep* end() const { return steps_.data() + steps_.size(); }
  /// Can be read in whole blocks of TextBuffer.
  const char* textOf(const FormatStep& step) const { return texts_.data() + step.start; }

 private:
  void addDirective(char letter);
  void addEscape(char letter);
  void endStep(std::size_t directive);

  std::string_view letters_;
  bool indented_;
  Vector<FormatStep> steps_;
  Vector<char> texts_;
  std::uint32_t stepStart_ = 0;
};

}  // namespace vel::trace
