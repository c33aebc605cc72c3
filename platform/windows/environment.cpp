// The process's environment as the C runtime keeps it.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/environment.h"

namespace vel::platform {

const char* environmentValue(const char* name) noexcept {
  return std::getenv(name);
}

const char* settingValue(const char* name) noexcept {
  return environmentValue(name);
}

SystemError putEnvironment(char* assignment) noexcept {
  // _putenv accepts a name without "=" and does nothing. It deletes a variable whose new value exceeds the
  // system's limit of 32,766 characters, so both are refused here.
  constexpr std::size_t kMaxValueLength = 32766;
  const char* const value = std::strchr(assignment, '=');
  if (value == nullptr || std::strlen(value + 1) > kMaxValueLength) return EINVAL;
  return _putenv(assignment) == 0 ? 0 : errno;
}

}  // namespace vel::platform
