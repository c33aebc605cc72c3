// Begins a replacement by a name of the system's own.
#pragma once

#include "platform/replacing.h"
#include "platform/system_error.h"

namespace vel::platform {

/// As startReplacement, for a path relative to an open directory, or to AT_FDCWD.
SystemError startReplacementAt(int directory, const char* path, Replacement& replacement) noexcept;

}  // namespace vel::platform
