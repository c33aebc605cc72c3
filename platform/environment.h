// The environment of the process.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Returns the value, or null if the variable is not set. For variables that the program names itself; read
/// the library's own settings with settingValue.
const char* environmentValue(const char* name) noexcept;
/// Returns the value of a variable that controls this library, or null if it is not set. Always null in a
/// program with more rights than its caller (POSIX: setuid, setgid, capabilities).
const char* settingValue(const char* name) noexcept;
/// `assignment` is "NAME=value", where an empty value removes the variable; it is copied.
SystemError putEnvironment(char* assignment) noexcept;

}  // namespace vel::platform
