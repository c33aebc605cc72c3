// What the check of a command line needs to know about rewritten arguments, and reports of faulty ones.
// Before useConventions no argument is rewritten.
#pragma once

#include "consoleui/console_ui_words.h"
#include "vel_include/vel_consoleui.h"

namespace vel::consoleui {

/// A cursor over the arguments of a user interface that tells its position. What is known about a rewritten
/// argument is found by that: a program may have the same pointer twice in its vector.
class PositionCursor : public VelClArgvCheckCursor {
 public:
  using VelClArgvCheckCursor::getIndex;
  using VelClArgvCheckCursor::VelClArgvCheckCursor;
};

/// Whether the argument is "-" and `name`. VelClArgvCursor::matches will not do: it strips a "-" from the
/// name of a switch, but the names of built-in switches keep one of their own.
bool isNamed(const VelClArgvCursor& argument, const char* name);
/// Whether the command line has a switch of this name, without a value after a "=".
bool hasSwitch(const VelClConsoleUI& ui, const char* name);

/// Whether the argument is the value after a "=". It is checked together with its switch.
bool isAttachedValue(const VelClConsoleUI& ui, const PositionCursor& argument);
/// Whether the argument is not a switch, even if it begins with "-".
bool isData(const VelClConsoleUI& ui, const PositionCursor& argument);
/// Whether the switch has a value after a "=" but takes none.
bool hasUnwantedValue(const VelClConsoleUI& ui, const PositionCursor& argument);
/// Whether the argument is a built-in switch, which takes no value, with a value after a "=".
bool isBuiltInWithValue(const VelClConsoleUI& ui, const Words& words, const PositionCursor& argument);
/// Whether the next argument is not the value of this switch, because another one was between them.
bool isCutOff(const VelClConsoleUI& ui, const PositionCursor& argument);

/// Writes the error message about an argument to standard error, with the argument as typed. An unknown
/// argument gets the names of switches that resemble it.
void reportArgument(const VelClConsoleUI& ui, const Words& words, Word fault, const PositionCursor& argument);

/// Replaces unambiguous beginnings of names, those of built-in switches included, by the whole names.
void completeNames(const VelClConsoleUI& ui, const Words& words);
/// Whether a switch could be the beginning of a built-in one.
bool mayAbbreviateBuiltIn(const VelClConsoleUI& ui, const Words& words);

}  // namespace vel::consoleui
