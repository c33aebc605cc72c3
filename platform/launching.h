// Starting, finding and ending programs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

struct Launch {
  char* commandLine;       ///< the text that Windows takes
  char* const* arguments;  ///< the same text split, which POSIX takes: at least the program, null at the end
  bool newConsole;         ///< Windows: a console window of its own
};

/// Starts a program and waits for its end. It inherits the environment, the current directory and the
/// standard streams, and no other descriptor. A process that a POSIX signal ended has the exit code 128 plus
/// the signal's number. Fails with 2 on every system if the program is not found.
NativeError launchAndWait(const Launch& launch, std::uint32_t& exitCode) noexcept;
/// The same without waiting and without a console; on POSIX in a new session, with null streams, and never as
/// a zombie of this process.
NativeError launchDetached(const Launch& launch, std::uint32_t& processId) noexcept;

enum class EndResult { Ended, CannotOpen, Failed };
/// Ends a process unconditionally, without waiting. Numbers that name no single process cannot be opened.
EndResult endProcess(std::uint32_t id) noexcept;

/// Whether a launch would find this name, which has a directory.
bool programExists(const char* name) noexcept;
/// Writes the full path of a program given without directory, NUL-terminated. Windows: the system's search.
/// POSIX: the current directory, then PATH; "x.EXE" is looked for as given, then as "x". Returns whether it
/// was found and fits.
bool searchProgram(const char* name, char* out, std::size_t capacity) noexcept;

}  // namespace vel::platform
