// Writes aligned lines and the description of an exception to any stream.
#pragma once

#include <cstddef>
#include <iosfwd>

#include "consoleui/console_ui_words.h"
#include "foundation/allocator.h"
#include "vel_include/vel_consoleui.h"
#include "vel_include/vel_helpers.h"

namespace vel::consoleui {

/// Returns the number of characters of a text in the code page of the process.
std::size_t widthOf(const char* text);

/// Writes the label column of an aligned line, up to and with the colon and a blank.
void writeLabel(std::ostream& stream, const VelClConsoleUIParams& params, const char* label);
/// Writes a whole aligned line. The value is in double quotes if mustQuoteStrings is set.
void writeLine(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
               const char* value);

/// The text of a decimal number.
struct NumberText {
  char text[24];
  explicit NumberText(long long value) { velI64toa(value, text); }
  explicit NumberText(unsigned long long value) { velW64toa(value, text); }
};

/// Returns "min.: 1, max.: 9".
String limitsHint(std::int32_t minimum, std::int32_t maximum, const Words& words);

/// Writes the lines that describe an exception. Unless `verbose` is true only the identifier is written, and
/// class, severity and action where they are not 0; with it also cause and origin.
void writeException(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                    const VelClException& exception, bool verbose);
/// Writes the line with the name and the number of an error identifier, or the number alone.
void writeErrorId(std::ostream& stream, const VelClConsoleUIParams& params, const Words& words,
                  std::uint32_t errorId);

}  // namespace vel::consoleui
