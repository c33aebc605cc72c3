// The C runtime's environment of the process.
#include <cstdlib>
#include <cstring>

#include "platform/platform.h"

namespace vel::platform {

const char* environmentValue(const char* name) noexcept {
  return std::getenv(name);
}

bool putEnvironment(char* assignment) noexcept {
  // The runtime takes a bare name without complaint or effect.
  return std::strchr(assignment, '=') != nullptr && _putenv(assignment) == 0;
}

}  // namespace vel::platform
