// Clocks and sleeping. tickCount is in tick_count.cpp.
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

// Sleeping until a time, rather than for one, cannot last longer because of signals.
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
