// IDs of this process and its threads, and the count of forks.
#pragma once

#include <cstdint>

namespace vel::platform {

std::uint32_t currentProcessId() noexcept;
std::uint32_t currentThreadId() noexcept;

namespace detail {
extern std::uint32_t forks;
}
/// Returns a count that differs between a process and its forked child; always 0 on Windows. Makes no system
/// call.
inline std::uint32_t forkCount() noexcept {
  return detail::forks;
}

/// What to do when the process forks: before the fork, and after it in either process. The child has its own
/// IDs by then.
struct ForkHandlers {
  void (*before)();
  void (*inParent)();
  void (*inChild)();
};
/// Sets the handlers. There is one set of them; Windows never calls them.
void setForkHandlers(const ForkHandlers& handlers) noexcept;

}  // namespace vel::platform
