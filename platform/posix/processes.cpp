// Identifiers of processes and threads.
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/platform.h"

namespace vel::platform {

std::uint32_t currentProcessId() noexcept {
  return static_cast<std::uint32_t>(getpid());
}

std::uint32_t currentThreadId() noexcept {
  return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

}  // namespace vel::platform
