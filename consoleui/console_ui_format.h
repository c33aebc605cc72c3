// Writers of aligned lines and of an exception's description, on any stream.
#pragma once

#include <cstddef>
#include <iosfwd>

#include "consoleui/console_ui_words.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_helpers.h"

namespace vel::consoleui {

/// How many columns a text takes: its characters in the process's code page.
std::size_t widthOf(const char* text);

/// The label column of an aligned line.
void writeLabel(std::ostream& stream, const VelClConsoleUIParams& params, const char* label);
/// A whole line; the value in double quotes when the parameters say so.
void writeLine(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
               const char* value);

/// A decimal number's text.
struct NumberText {
  char text[24];
  explicit NumberText(long long value) { velI64toa(value, text); }
  explicit NumberText(unsigned long long value) { velW64toa(value, text); }
};

/// The lines that describe an exception.
void writeException(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                    const VelClException& exception, bool verbose);
/// The line with an error identifier's name and number.
void writeErrorId(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                  std::uint32_t errorId);

}  // namespace vel::consoleui
