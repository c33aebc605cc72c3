// Writers of messages in the fixed layout, on any stream.
#pragma once

#include <iosfwd>

#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

/// Up to five texts of one message; null ones are left out.
struct MessageTexts {
  const char* texts[5];
};

/// The fixed layout: a separator line, the process name and the label, the indented texts.
void writeMessage(std::ostream& stream, const VelClConsoleUIParams& params, const char* label,
                  const MessageTexts& message);

/// The line between one dialogue and the next.
void writeSeparatorLine(std::ostream& stream);

}  // namespace vel::consoleui
