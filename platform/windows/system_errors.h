// What operations on files and directories report for Windows' own error numbers.
#pragma once

#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// The runtime's number; EACCES for errors that have none of their own, 0 for none.
SystemError errnoOf(std::uint32_t error) noexcept;

}  // namespace vel::platform
