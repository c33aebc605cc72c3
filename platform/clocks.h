// Clocks and sleeping.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Milliseconds since the system started, wrapping at 32 bits.
std::uint32_t tickCount() noexcept;
/// Counts per second of performanceCounter; 0 without such a counter.
std::int64_t performanceFrequency() noexcept;
/// Returns whether the system has such a counter.
bool performanceCounter(std::int64_t& value) noexcept;
/// Sleeps the whole time, even if signals arrive.
void sleepMilliseconds(std::uint32_t milliseconds) noexcept;

}  // namespace vel::platform
