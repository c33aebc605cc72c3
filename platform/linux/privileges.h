// Detects programs that have more rights than the user who started them.
#pragma once

#include <sys/auxv.h>

namespace vel::platform {

/// Whether the kernel marked this program at its start as privileged (AT_SECURE): it is setuid or setgid for
/// another user or group, or has gained capabilities from its file. Its caller chooses environment and
/// current directory, but must not gain the program's rights through them.
inline bool isPrivileged() noexcept {
  return getauxval(AT_SECURE) != 0;
}

}  // namespace vel::platform
