// Copying inside the kernel.
#pragma once

#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// Copies a regular file of `size` bytes into an empty one, without its holes and without moving the bytes
/// through this process, as far as the file systems can. Sets both positions to where it stopped: the caller
/// copies the rest, which is everything where they cannot.
SystemError copyInKernel(int source, int target, std::uint64_t size) noexcept;

}  // namespace vel::platform
