// The signals by which users and systems end programs.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Blocks SIGHUP, SIGINT and SIGTERM for this thread, for a moment that must not be interrupted. Returns the
/// set to release, 0 for none; Windows has no such signals.
std::uint32_t holdEndingSignals() noexcept;
/// Unblocks them; signals that arrived meanwhile take effect.
void releaseEndingSignals(std::uint32_t held) noexcept;
/// For programs that own their process and start no others: from now on a write beyond the file size limit
/// fails (EFBIG) instead of ending the process by SIGXFSZ. Windows has no such limit.
void ignoreFileSizeSignal() noexcept;

}  // namespace vel::platform
