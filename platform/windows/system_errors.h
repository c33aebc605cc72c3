// Translates the error codes of Windows' functions on files and directories.
#pragma once

#include <cstdint>

#include "platform/system_error.h"

namespace vel::platform {

/// Returns the errno of a Windows error code; EACCES for codes without a counterpart, 0 for ERROR_SUCCESS.
SystemError errnoOf(std::uint32_t error) noexcept;

}  // namespace vel::platform
