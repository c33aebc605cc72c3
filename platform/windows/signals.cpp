// These functions do nothing: Windows has no signals that a thread could block, and removes unfinished files
// itself.
#include "platform/signals.h"

namespace vel::platform {

std::uint32_t holdEndingSignals() noexcept {
  return 0;
}

void releaseEndingSignals(std::uint32_t) noexcept {}

void ignoreFileSizeSignal() noexcept {}

}  // namespace vel::platform
