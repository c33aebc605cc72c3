// Signals of POSIX that a thread holds back or a program ignores; none of this has an effect on Windows.
#pragma once

#include <cstdint>

namespace vel::platform {

/// Blocks SIGHUP, SIGINT and SIGTERM for this thread, for a step that must not be interrupted. Returns the
/// signals that were not blocked before, for releaseEndingSignals. Calls may nest.
std::uint32_t holdEndingSignals() noexcept;
/// Unblocks the signals that holdEndingSignals returned; those that arrived meanwhile take effect.
void releaseEndingSignals(std::uint32_t held) noexcept;
/// For programs that own their process and start no others: from then on a write beyond the file size limit
/// fails (EFBIG) instead of ending the process by SIGXFSZ.
void ignoreFileSizeSignal() noexcept;

}  // namespace vel::platform
