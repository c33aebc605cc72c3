// The command line that this process was started with.
#pragma once

#include <cstddef>

namespace vel::platform {

/// Writes the command line in UTF-8, NUL-terminated, and returns the size that it needs with its terminator.
/// Writes nothing if that exceeds `capacity`. Returns 0 on POSIX systems, whose processes get arguments and
/// not a line.
std::size_t ownCommandLine(char* out, std::size_t capacity) noexcept;
/// Whether these are the arguments that main received from the C runtime. False where they are what the
/// system passed.
bool areArgumentsOfMain(int count, const char* const* arguments) noexcept;

}  // namespace vel::platform
