// Numbers of this process and of its threads.
#pragma once

#include <cstdint>

namespace vel::platform {

std::uint32_t currentProcessId() noexcept;
std::uint32_t currentThreadId() noexcept;

namespace detail {
extern std::uint32_t forks;
}
/// A number that differs between a process and its forked child; constant on Windows. Costs no call.
inline std::uint32_t forkCount() noexcept {
  return detail::forks;
}

}  // namespace vel::platform
