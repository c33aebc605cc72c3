// High-resolution clock and sleeping. tickCount needs a clock that POSIX does not define: see tick_count.cpp.
#include "platform/clocks.h"

#include <time.h>

#include <cerrno>

#include "platform/posix/nanoseconds.h"

namespace vel::platform {

std::int64_t performanceFrequency() noexcept {
  return kNanosecondsPerSecond;
}

bool performanceCounter(std::int64_t& value) noexcept {
  timespec now{};
  if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return false;
  value = nanosecondsIn(now);
  return true;
}

// Sleeps until a point in time instead of for a duration: restarting a relative sleep after each signal would
// add up to a longer one.
void sleepMilliseconds(std::uint32_t milliseconds) noexcept {
  timespec end{};
  if (clock_gettime(CLOCK_MONOTONIC, &end) != 0) return;
  end.tv_sec += milliseconds / kMillisecondsPerSecond;
  end.tv_nsec += milliseconds % kMillisecondsPerSecond * kNanosecondsPerMillisecond;
  if (end.tv_nsec >= kNanosecondsPerSecond) {
    end.tv_nsec -= kNanosecondsPerSecond;
    ++end.tv_sec;
  }
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

}  // namespace vel::platform
