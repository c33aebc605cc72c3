// The system's kind, its import thunks and its message boxes.
#pragma once

#include <cstddef>

namespace vel::platform {

/// The Windows platform identifier: 2 for the NT family, 1 for consumer Windows, 0 for a 16-bit host; -1 on
/// any other system or when the query fails.
int windowsPlatformId() noexcept;
/// Returns the function that an import thunk jumps to; any other function unchanged.
const void* resolveImportThunk(const void* function) noexcept;
/// Shows a stop message with an OK button and waits for it, where the system has message boxes. The text is
/// given in pieces; they are joined without memory of the process's heap, and cut if the system is out of
/// memory, too.
void showStopMessage(const char* title, const char* const* pieces, std::size_t count) noexcept;

}  // namespace vel::platform
