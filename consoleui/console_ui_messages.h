// Writes messages in the fixed layout to any stream.
#pragma once

#include <iosfwd>

#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

/// Up to five texts of one message. Null ones are left out.
struct MessageTexts {
  const char* texts[5];
};

/// Writes a separator line, then the process name and the label, then the indented texts with ": " between
/// them.
void writeMessage(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
                  const MessageTexts& message);

/// Writes the line that separates one dialogue from the next.
void writeSeparatorLine(std::ostream& stream);

}  // namespace vel::consoleui
