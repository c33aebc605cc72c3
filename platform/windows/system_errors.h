// Translates the error numbers of Windows' functions on files and directories.
#pragma once

#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// Returns the errno of a Windows error number; EACCES for numbers without one of their own, 0 for
/// ERROR_SUCCESS.
SystemError errnoOf(std::uint32_t error) noexcept;

}  // namespace vel::platform
