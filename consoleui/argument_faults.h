// What the check of a command line needs to know about rewritten arguments, and reports of faulty ones.
// Before useConventions no argument is rewritten.
#pragma once

#include "consoleui/console_ui_words.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

/// Arguments are found by their pointers, which are those of the user interface's vector.
///
/// Whether the argument is the value after a "=". It is checked together with its switch.
bool isAttachedValue(const VelClConsoleUI& ui, const char* argument);
/// Whether the argument is not a switch, even if it begins with "-".
bool isData(const VelClConsoleUI& ui, const char* argument);
/// Whether the switch has a value after a "=" but takes none.
bool hasUnwantedValue(const VelClConsoleUI& ui, const VelClArgvCheckCursor& argument);
/// Whether "--" follows the argument, so that the next one is not its value.
bool isLastSwitch(const VelClConsoleUI& ui, const char* argument);

/// Writes the error message about an argument to standard error, with the argument as typed. An unknown
/// argument gets the names of switches that resemble it.
void reportArgument(const VelClConsoleUI& ui, const Words& words, Word fault, const char* argument);

/// Replaces unambiguous beginnings of names by the whole names. Built-in switches stay what they are.
void completeNames(VelClConsoleUI& ui, const Words& words);

}  // namespace vel::consoleui
