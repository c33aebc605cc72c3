// Parses a format string into steps. Directives are only letters here; trace_formatter_run.cpp knows their
// meaning.
#include "trace/trace_format_program.h"

#include <cstring>

#include "trace/trace_text_buffer.h"

namespace vel::trace {

FormatProgram::FormatProgram(const char* format, std::string_view letters, bool indented)
    : letters_(letters), indented_(indented) {
  while (*format != '\0') {
    const char* const sign = format + std::strcspn(format, "%\\");
    texts_.insert(texts_.end(), format, sign);
    // A '%' or a backslash as the last character is dropped.
    if (*sign == '\0' || sign[1] == '\0') break;
    if (*sign == '%')
      addDirective(sign[1]);
    else
      addEscape(sign[1]);
    format = sign + 2;
  }
  endStep(FormatStep::kNone);
  // Padding, since texts are copied in whole blocks.
  texts_.resize(texts_.size() + TextBuffer::kBlock);
}

void FormatProgram::addDirective(char letter) {
  const std::size_t index = letters_.find(letter);
  if (letter == 'n' && !indented_)
    texts_.push_back('\n');
  else if (index != std::string_view::npos)
    endStep(index);
  else
    // Intentional: an unknown directive such as "%q" prints "%" and drops
    // its letter. "%%" works in this way.
    texts_.push_back('%');
}

// "\n" and "%n" are the same; "\t" is a tab; before any other character the backslash is dropped.
void FormatProgram::addEscape(char letter) {
  if (letter == 'n')
    addDirective(letter);
  else
    texts_.push_back(letter == 't' ? '\t' : letter);
}

void FormatProgram::endStep(std::size_t directive) {
  const auto end = static_cast<std::uint32_t>(texts_.size());
  steps_.push_back({stepStart_, end - stepStart_, static_cast<std::uint32_t>(directive)});
  stepStart_ = end;
}

}  // namespace vel::trace
