// Milliseconds since the system started, from the coarse clock of the kernel's timer tick. Reading it costs a
// fraction of a precise clock, which matters because every trace entry has such a time.
//
// The coarse clock stops while the system sleeps, so the time asleep is added. It is computed once a second:
//
//   tickCount = CLOCK_MONOTONIC_COARSE + (CLOCK_BOOTTIME - CLOCK_MONOTONIC)
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

/// Returns how long the system has slept since its start, in milliseconds; 0 if it cannot tell.
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
    // Ignore a difference of 1 ms, which rounding causes: the count must not go backwards for it.
    const std::int64_t found = millisecondsAsleep();
    if (std::abs(found - asleep.load(std::memory_order_relaxed)) > 1)
      asleep.store(found, std::memory_order_relaxed);
    nextLook.store(awake + kMillisecondsPerSecond, std::memory_order_relaxed);
  }
  return static_cast<std::uint32_t>(awake + asleep.load(std::memory_order_relaxed));
}

}  // namespace vel::platform
