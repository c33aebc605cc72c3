#include "platform/posix/thread_number.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace vel::platform {

std::uint32_t askThreadNumber() noexcept {
  return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

}  // namespace vel::platform
