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

}  // namespace vel::platform
