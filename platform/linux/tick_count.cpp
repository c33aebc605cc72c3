// The time since the system started, from the kernel's tick: reading it costs a fraction of what the precise
// clocks cost, which matters because every trace entry has such a time. The tick stands still while the
// system sleeps, so the time asleep is added; it is asked for once a second.
#include <time.h>

#include <atomic>
#include <cstdlib>

#include "platform/clocks.h"
#include "platform/posix/nanoseconds.h"

namespace vel::platform {

namespace {

std::int64_t nanosecondsOf(clockid_t clock) noexcept {
  timespec now{};
  return clock_gettime(clock, &now) == 0 ? nanosecondsIn(now) : 0;
}

/// How long the system has slept since its start, in milliseconds; 0 where it cannot tell.
std::int64_t millisecondsAsleep() noexcept {
  const std::int64_t all = nanosecondsOf(CLOCK_BOOTTIME);
  const std::int64_t awake = nanosecondsOf(CLOCK_MONOTONIC);
  return all > awake ? (all - awake) / kNanosecondsPerMillisecond : 0;
}

}  // namespace

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

}  // namespace vel::platform
