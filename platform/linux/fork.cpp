// Forks by _Fork(), which POSIX has since 2024.
#include "platform/posix/fork.h"

#include <unistd.h>

namespace vel::platform {

pid_t forkWithoutHandlers() noexcept {
  return _Fork();
}

}  // namespace vel::platform
