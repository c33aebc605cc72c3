// How the seam reports failures. A function that can fail returns one of these two types, 0 for success, and
// gives its value through an out parameter, whose value is undefined after a failure. A function that answers
// a question ("exists", "is writable") returns the answer.
#pragma once

#include <cstdint>

namespace vel::platform {

/// An errno on every system; Windows errors are translated, see windows/system_errors.h.
using SystemError = int;

/// The system's own error code, for results that programs see: the last error on Windows, an errno elsewhere.
using NativeError = std::uint32_t;

}  // namespace vel::platform
