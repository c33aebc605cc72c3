// Writes usage and help strings of command lines, line by line.
#pragma once

#include <cstddef>
#include <iosfwd>

namespace vel {

/// False for brackets and double quotes, which only instruct the check of a command line.
constexpr bool isShownInUsage(char c) noexcept {
  return c != '(' && c != ')' && c != '"';
}

enum class TextKind {
  Usage,                    ///< "(", ")", double quotes and "!" are left out
  UsageWithoutTaggedLines,  ///< as Usage, and lines with a "!" are left out
  Help                      ///< everything is shown
};

/// Writes `text`. Every line but the first is indented by `indentation` blanks; a line that begins with "@"
/// is shown empty. CR LF counts as one line break. No line break is added at the end.
void writeText(std::ostream& stream, const char* text, TextKind kind, std::size_t indentation);

/// Writes the same character `count` times.
void writeFill(std::ostream& stream, std::size_t count, char c);

}  // namespace vel
