// The system's ID of a thread.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Queries the kernel each time; processes.cpp caches the result.
std::uint32_t queryThreadId() noexcept;

}  // namespace vel::platform
