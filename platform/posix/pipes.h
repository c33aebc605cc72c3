// Making pipes, and queries about pipes that never wait.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Makes a pipe: `ends` are its read and write end, unchanged after a failure. `flags` are those of open().
/// Programs do not inherit it, also if another thread starts one in the same moment.
SystemError makePipe(int (&ends)[2], int flags) noexcept;

/// Whether the descriptor is a named pipe (FIFO). An unnamed pipe that was opened through the directory of
/// descriptors may have lost its writer and still contain bytes, so it must not be refused for want of a
/// writer.
bool isNamedPipe(int descriptor) noexcept;

/// Whether somebody has the pipe open for writing, or bytes are left in it. Consumes nothing.
bool hasWriter(int pipe) noexcept;

}  // namespace vel::platform
