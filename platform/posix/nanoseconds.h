// Converts times of the system's clocks to a number of nanoseconds.
#pragma once

#include <time.h>

#include <cstdint>

namespace vel::platform {

inline constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
inline constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
inline constexpr std::int64_t kMillisecondsPerSecond = 1000;

inline std::int64_t nanosecondsIn(const timespec& time) noexcept {
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

}  // namespace vel::platform
