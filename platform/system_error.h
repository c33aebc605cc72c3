// How the seam reports failures. A function that can fail returns one of these two types, 0 for success, and
// gives its value through an out parameter, whose value is undefined after a failure. A function that answers
// a question ("exists", "is writable") returns the answer.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vel::platform {

/// An errno on every system; Windows errors are translated, see windows/system_errors.h.
using SystemError = int;

/// The system's own error code, for results that programs see: the last error on Windows, an errno elsewhere.
using NativeError = std::uint32_t;

/// Returns the errno that says the same; EIO for an error without one.
SystemError preciseErrno(NativeError error) noexcept;
/// Writes the system's text for an error in the user's language, without a line break, NUL-terminated; cut if
/// it does not fit. On Windows it is UTF-8. Returns its length; 0 if the system has no text.
std::size_t systemErrorText(NativeError error, char* out, std::size_t capacity) noexcept;

}  // namespace vel::platform
