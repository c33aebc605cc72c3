// Writes the usage to any stream.
#pragma once

#include <iosfwd>

#include "consoleui/console_settings.h"
#include "consoleui/console_ui_words.h"

namespace vel::consoleui {

/// Writes the heading, the process name, the built-in switches and the usage string, without a line break at
/// the end. `hasSourceOfMessages` tells whether the words have texts.
void writeUsage(std::ostream& stream, const ConsoleSettings& settings, const Words& words,
                bool hasSourceOfMessages);

}  // namespace vel::consoleui
