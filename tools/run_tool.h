// The frame around every tool's main function: what happens when memory runs out, and a terminal that texts
// do not control.
#pragma once

#include "vel_include/vel_error.h"

namespace vel::tools {

/// The exit code of a tool that ran out of memory.
inline constexpr int kExitOutOfMemory = 200;

/// Runs a tool's own main function and returns its exit code. When memory runs out, at any time, the tool
/// says so on standard error and ends with kExitOutOfMemory. Its streams are safe, see safe_terminal.h.
int runTool(const char* name, int argc, char** argv, int (*run)(int argc, char** argv));

/// For handlers: throws the current exception again if it tells that memory ran out.
void passOutOfMemory(const VelClException& exception);

}  // namespace vel::tools
