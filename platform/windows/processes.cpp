// IDs of processes and threads. Windows does not fork, so the count of forks stays 0.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/processes.h"

namespace vel::platform {

std::uint32_t detail::forks = 0;

std::uint32_t currentProcessId() noexcept {
  return GetCurrentProcessId();
}

std::uint32_t currentThreadId() noexcept {
  return GetCurrentThreadId();
}

void setForkHandlers(const ForkHandlers&) noexcept {}

}  // namespace vel::platform
