// This system has no signals that a thread could hold back, and removes unfinished files by itself.
#include "platform/ending_signals.h"

namespace vel::platform {

std::uint32_t holdEndingSignals() noexcept {
  return 0;
}

void releaseEndingSignals(std::uint32_t) noexcept {}

}  // namespace vel::platform
