// What a child must not inherit.
#pragma once

namespace vel::platform {

/// Closes every descriptor from `first` on. Async-signal-safe, for use between fork and exec.
void closeDescriptorsFrom(int first) noexcept;

/// The same without the system call that does it at once, for kernels that lack it.
void closeListedDescriptors(int first) noexcept;

}  // namespace vel::platform
