// A parsed format string. It is parsed once for each pass through a file, so that an entry costs only what it
// shows. The result is a list of steps, each a piece of literal text and the directive after it:
//
//   "%f: %m\n"  ->  {"", 'f'}  {": ", 'm'}  {"\n", none}
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/allocator.h"

namespace vel::trace {

struct FormatStep {
  std::uint32_t start;      ///< offset of the text before the directive, see FormatProgram::textOf
  std::uint32_t length;     ///< of that text, in characters
  std::uint32_t directive;  ///< index of the directive's letter, or kNone

  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
};

class FormatProgram {
 public:
  /// `letters` are the known directives; steps refer to them by index, and they must outlive
  /// this object. Unless lines are indented, "%n" becomes literal text instead of a
  /// directive. Throws when the memory manager fails.
  FormatProgram(const char* format, std::string_view letters, bool indented);

  const FormatStep* begin() const { return steps_.data(); }
  const FormatStep* end() const { return steps_.data() + steps_.size(); }
  /// The step's text. It can be read in whole blocks of TextBuffer::kBlock, past its end.
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
