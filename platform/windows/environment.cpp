// The C runtime's environment of the process.
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
  // The runtime takes a bare name without complaint or effect, and destroys a variable whose new value is
  // longer than the system's limit.
  constexpr std::size_t kLongestValue = 32766;
  const char* const value = std::strchr(assignment, '=');
  if (value == nullptr || std::strlen(value + 1) > kLongestValue) return EINVAL;
  return _putenv(assignment) == 0 ? 0 : errno;
}

}  // namespace vel::platform
