// The system's number of a thread.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Asks the kernel; see processes.cpp for the cached one.
std::uint32_t queryThreadId() noexcept;

}  // namespace vel::platform
