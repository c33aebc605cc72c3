// Answers questions of users and of generators to standard output and ends the process with 0.
#pragma once

#include "consoleui/console_settings.h"
#include "consoleui/console_ui_words.h"

namespace vel::consoleui {

/// For --version: the name of the program, and its version.
[[noreturn]] void answerVersion(const VelClConsoleUI& ui);
/// For --help: title, usage and help text.
[[noreturn]] void answerHelp(const VelClConsoleUI& ui, const Words& words, bool hasSourceOfMessages);
/// For the generators of manual pages and completions: the texts of the program as they were given, with the
/// marks that users do not see. The lines of a text of several lines are indented by a blank:
///
///   Name: logtop
///   Title: Counts lines
///   Version: 1.2
///   Conventions: yes colors
///   Usage:
///    [(-top <number>)] <file> ...
///   Help:
///    -top <number>  how many
[[noreturn]] void answerDescription(const VelClConsoleUI& ui);

}  // namespace vel::consoleui
