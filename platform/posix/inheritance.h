// Closes the descriptors that a child process must not inherit.
#pragma once

namespace vel::platform {

/// Closes every descriptor from `first` on. Async-signal-safe, for use between fork and exec.
void closeDescriptorsFrom(int first) noexcept;

/// Same result by reading the list of open descriptors, for kernels without a system call that closes a
/// range.
void closeListedDescriptors(int first) noexcept;

}  // namespace vel::platform
