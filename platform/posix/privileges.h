// Programs that have more rights than whoever started them.
#pragma once

#include <sys/auxv.h>

namespace vel::platform {

/// The kernel says so when the program starts: it is setuid or setgid for another user or group, or has
/// capabilities of its own. The caller then chooses environment and current directory, but not more.
inline bool isPrivileged() noexcept {
  return getauxval(AT_SECURE) != 0;
}

}  // namespace vel::platform
