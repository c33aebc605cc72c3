// Clocks and sleeping. Windows adds the time asleep to its tick count itself.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "platform/clocks.h"

namespace vel::platform {

std::uint32_t tickCount() noexcept {
  return GetTickCount();
}

std::int64_t performanceFrequency() noexcept {
  LARGE_INTEGER frequency;
  return QueryPerformanceFrequency(&frequency) != FALSE ? frequency.QuadPart : 0;
}

bool performanceCounter(std::int64_t& value) noexcept {
  LARGE_INTEGER counter;
  if (QueryPerformanceCounter(&counter) == FALSE) return false;
  value = counter.QuadPart;
  return true;
}

void sleepMilliseconds(std::uint32_t milliseconds) noexcept {
  // Sleep(INFINITE) never returns, so the highest count is slept in two steps.
  if (milliseconds == INFINITE) Sleep(1);
  Sleep(milliseconds == INFINITE ? INFINITE - 1 : milliseconds);
}

}  // namespace vel::platform
