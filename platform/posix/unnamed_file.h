// Files without a name, which nobody else sees and which vanish with their last descriptor.
#pragma once

#include <sys/types.h>

#include "platform/system_error.h"

namespace vel::platform {

/// Creates a file without a name in an open directory, for writing. Not every file system can do that: -1.
int createUnnamed(int directory, mode_t mode) noexcept;
/// Gives such a file a name in an open directory. Fails with EEXIST if there is an entry of that name.
SystemError nameUnnamed(int descriptor, int directory, const char* name) noexcept;

}  // namespace vel::platform
