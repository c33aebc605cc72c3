// What can be found out about a pipe without waiting.
#pragma once

namespace vel::platform {

/// Whether the descriptor is a pipe with a name. Pipes without one, opened through the directory of
/// descriptors, may have lost their writer and still hold bytes.
bool isNamedPipe(int descriptor) noexcept;

/// Whether somebody has the other end of a pipe open for writing, or bytes are left in it. Consumes nothing.
bool hasWriter(int pipe) noexcept;

}  // namespace vel::platform
