// Programs that have more rights than whoever started them.
#pragma once

#include <sys/auxv.h>

namespace vel::platform {

/// Whether the kernel marked this program when it started: it is setuid or setgid for another user or group,
/// or has capabilities of its own. Its caller may choose the environment and the current directory, but must
/// not gain the program's rights by them.
inline bool isPrivileged() noexcept {
  return getauxval(AT_SECURE) != 0;
}

}  // namespace vel::platform
