// Clocks and sleeping.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Milliseconds since the system started, the time asleep included, wrapping at 32 bits.
std::uint32_t tickCount() noexcept;
/// Ticks of performanceCounter per second; 0 if the system does not provide that counter.
std::int64_t performanceFrequency() noexcept;
/// Reads the high-resolution monotonic counter. Returns false if the system does not provide one.
bool performanceCounter(std::int64_t& value) noexcept;
/// Sleeps the whole time: a signal handler does not end it early.
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

}  // namespace vel::platform
