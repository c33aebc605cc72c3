// The environment of the process.
#pragma once

#include "platform/system_error.h"

namespace vel::platform {

/// Returns the value, or null when the variable is not set. For variables that the program asks for by name;
/// the library's own settings go through settingValue.
const char* environmentValue(const char* name) noexcept;
/// The same for variables that control this library: a program with more rights than its caller (POSIX:
/// setuid, setgid, capabilities) sees none of them.
const char* settingValue(const char* name) noexcept;
/// `assignment` is "NAME=value", where an empty value removes the variable; it is copied.
SystemError putEnvironment(char* assignment) noexcept;

}  // namespace vel::platform
