// Clocks and sleeping.
#include <time.h>

#include <cerrno>

#include "platform/platform.h"

namespace vel::platform {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t kMillisecondsPerSecond = 1000;

}  // namespace

std::uint32_t tickCount() noexcept {
  timespec now{};
  // Time asleep counts, where the system can tell.
  if (clock_gettime(CLOCK_BOOTTIME, &now) != 0) clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint32_t>(now.tv_sec * kMillisecondsPerSecond +
                                    now.tv_nsec / kNanosecondsPerMillisecond);
}

std::int64_t performanceFrequency() noexcept {
  return kNanosecondsPerSecond;
}

bool performanceCounter(std::int64_t& value) noexcept {
  timespec now{};
  if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return false;
  value = now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
  return true;
}

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
