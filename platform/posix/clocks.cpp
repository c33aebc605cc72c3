// Clocks and sleeping.
#include <time.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

#include "platform/platform.h"

namespace vel::platform {

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t kMillisecondsPerSecond = 1000;

std::int64_t nanosecondsOf(clockid_t clock) noexcept {
  timespec now{};
  return clock_gettime(clock, &now) == 0 ? now.tv_sec * kNanosecondsPerSecond + now.tv_nsec : 0;
}

/// How long the system has slept since its start, in milliseconds; 0 where it cannot tell.
std::int64_t millisecondsAsleep() noexcept {
  const std::int64_t all = nanosecondsOf(CLOCK_BOOTTIME);
  const std::int64_t awake = nanosecondsOf(CLOCK_MONOTONIC);
  return all > awake ? (all - awake) / kNanosecondsPerMillisecond : 0;
}

}  // namespace

// The system's tick, several times cheaper to ask for than the precise clocks. It stands still while the
// system sleeps, which is looked at once a second.
std::uint32_t tickCount() noexcept {
  static std::atomic<std::int64_t> asleep{0};
  static std::atomic<std::int64_t> nextLook{0};
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  const std::int64_t awake = now.tv_sec * kMillisecondsPerSecond + now.tv_nsec / kNanosecondsPerMillisecond;
  if (awake >= nextLook.load(std::memory_order_relaxed)) {
    // Rounding alone must not set the count back.
    const std::int64_t found = millisecondsAsleep();
    if (std::abs(found - asleep.load(std::memory_order_relaxed)) > 1)
      asleep.store(found, std::memory_order_relaxed);
    nextLook.store(awake + kMillisecondsPerSecond, std::memory_order_relaxed);
  }
  return static_cast<std::uint32_t>(awake + asleep.load(std::memory_order_relaxed));
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
