// The status of an entry with all that the system knows.
#pragma once

#include "platform/named_files.h"
#include "platform/system_error.h"

namespace vel::platform {

/// `name` is relative to the open directory, or to AT_FDCWD.
SystemError statusAt(int directory, const char* name, LinkMeans links, FullStatus& status) noexcept;

}  // namespace vel::platform
