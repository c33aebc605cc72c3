// Shows usage and help strings of command lines, line by line.
#pragma once

#include <cstddef>
#include <iosfwd>

namespace vel {

/// A character that only tells the check of a command line something: brackets and double quotes.
constexpr bool isShownInUsage(char c) noexcept {
  return c != '(' && c != ')' && c != '"';
}

enum class TextKind {
  Usage,                    ///< "(", ")", double quotes and "!" are left out
  UsageWithoutTaggedLines,  ///< the same, and so are lines with a "!"
  Help                      ///< everything is shown
};

/// Writes `text`; every line but the first is indented by `indentation` blanks, and a line that begins with
/// "@" is shown empty. CR LF counts as one line break. No line break is added at the end.
void writeText(std::ostream& stream, const char* text, TextKind kind, std::size_t indentation);

/// Writes `count` times the same character.
void writeFill(std::ostream& stream, std::size_t count, char c);

}  // namespace vel
