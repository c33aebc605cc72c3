// Queries about pipes that never wait.
#pragma once

namespace vel::platform {

/// Whether the descriptor is a named pipe (FIFO). An unnamed pipe that was opened through the directory of
/// descriptors may have lost its writer and still contain bytes, so it must not be refused for having none.
bool isNamedPipe(int descriptor) noexcept;

/// Whether somebody has the pipe open for writing, or bytes are left in it. Consumes nothing.
bool hasWriter(int pipe) noexcept;

}  // namespace vel::platform
