// The main function that all tools share is in tool_main.cpp. It calls toolMain, which each tool defines, and
// handles what every tool handles alike: lack of memory, and texts that must not control the terminal.
#pragma once

#include "vel_include/vel_error.h"

namespace vel::tools {

/// The exit code of a tool that ran out of memory. At whatever point that happens, the tool says so on
/// standard error and ends.
inline constexpr int kExitOutOfMemory = 200;

/// Each tool defines its name, as messages show it, and its own main function, which returns the exit code.
/// While that runs, standard output and standard error are safe, see safe_terminal.h.
extern const char* const kToolName;
int toolMain(int argc, char** argv);

/// Call in a catch handler. Rethrows the current exception if it reports that memory ran out, so that it
/// reaches the shared main function. Otherwise returns.
void rethrowIfOutOfMemory(const VelClException& exception);

}  // namespace vel::tools
