// Writes messages in the fixed layout to any stream.
#pragma once

#include <iosfwd>

#include "consoleui/console_settings.h"

namespace vel::consoleui {

/// Up to five texts of one message. Null ones are left out.
struct MessageTexts {
  const char* texts[5];
};

/// Writes a separator line, then the process name and the label, then the indented texts with ": " between
/// them. The label is shown in the style.
void writeMessage(std::ostream& stream, const ConsoleSettings& settings, const char* label,
                  VelEnTextStyle style, const MessageTexts& message);

/// Writes the line that separates one dialogue from the next.
void writeSeparatorLine(std::ostream& stream);

}  // namespace vel::consoleui
