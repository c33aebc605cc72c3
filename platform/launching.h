// Starting, finding and ending programs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

struct Launch {
  char* commandLine;       ///< used on Windows
  char* const* arguments;  ///< used on POSIX: the split command line, at least the program, null at the end
  bool newConsole;         ///< Windows: gives the program its own console window
};

/// Starts a program and waits for its end. The program inherits the environment, the current directory and
/// the standard streams, and no other descriptor. The exit code of a process ended by a POSIX signal is 128
/// plus the signal number. Fails with 2 on every system if the program is not found.
NativeError launchAndWait(const Launch& launch, std::uint32_t& exitCode) noexcept;
/// Starts a program and does not wait. On Windows it runs without a console unless `newConsole` is set. On
/// POSIX it runs in a new session, has /dev/null as its standard streams, and never becomes a zombie of this
/// process. It inherits and fails as with launchAndWait.
NativeError launchDetached(const Launch& launch, std::uint32_t& processId) noexcept;

enum class EndResult { Ended, CannotOpen, Failed };
/// Ends a process unconditionally, without waiting. CannotOpen: the process does not exist, this one may not
/// end it, or the ID does not identify a single process.
EndResult endProcess(std::uint32_t id) noexcept;

/// Returns whether a launch would find the program. `name` must contain a directory.
bool programExists(const char* name) noexcept;
/// Writes the full path of a program given without directory, NUL-terminated. Windows: the system's search.
/// POSIX: the current directory, then PATH; "x.EXE" is looked for as given, then as "x". Returns false if it
/// is not found or does not fit.
bool searchProgram(const char* name, char* out, std::size_t capacity) noexcept;

}  // namespace vel::platform
