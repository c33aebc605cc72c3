// Reads and changes the process's environment.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/environment.h"
#include "platform/linux/privileges.h"

namespace vel::platform {

const char* environmentValue(const char* name) noexcept {
  return std::getenv(name);
}

const char* settingValue(const char* name) noexcept {
  return isPrivileged() ? nullptr : environmentValue(name);
}

SystemError putEnvironment(char* assignment) noexcept {
  char* const equals = std::strchr(assignment, '=');
  if (equals == nullptr) return EINVAL;
  // Split in place and put together again: setenv wants name and value apart, and a copy could fail.
  *equals = '\0';
  const char* const value = equals + 1;
  const int result = *value == '\0' ? unsetenv(assignment) : setenv(assignment, value, 1);
  const SystemError error = result == 0 ? 0 : errno;
  *equals = '=';
  return error;
}

}  // namespace vel::platform
