// Queries the thread ID by system call: gettid() itself is missing in older C libraries.
#include "platform/posix/thread_id.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace vel::platform {

std::uint32_t queryThreadId() noexcept {
  return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

}  // namespace vel::platform
