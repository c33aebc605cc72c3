// The process's environment.
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"
#include "platform/posix/privileges.h"

namespace vel::platform {

const char* environmentValue(const char* name) noexcept {
  return std::getenv(name);
}

const char* settingValue(const char* name) noexcept {
  return isPrivileged() ? nullptr : environmentValue(name);
}

bool putEnvironment(char* assignment) noexcept {
  char* const equals = std::strchr(assignment, '=');
  if (equals == nullptr) return false;
  *equals = '\0';
  const char* const value = equals + 1;
  const int result = *value == '\0' ? unsetenv(assignment) : setenv(assignment, value, 1);
  *equals = '=';
  return result == 0;
}

}  // namespace vel::platform
