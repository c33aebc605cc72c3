// Files without a name: invisible to others, and removed by the system with their last descriptor.
#pragma once

#include <sys/types.h>

#include "platform/system_error.h"

namespace vel::platform {

/// Creates an unnamed file in an open directory, for writing. Returns its descriptor, or -1 where the file
/// system does not support that.
int createUnnamed(int directory, mode_t mode) noexcept;
/// Gives an unnamed file a name in an open directory. Fails with EEXIST if the name exists.
SystemError nameUnnamed(int descriptor, int directory, const char* name) noexcept;

}  // namespace vel::platform
