// Terminals get and give bytes.
#include "platform/console_text.h"

#include <cerrno>

namespace vel::platform {

void useConsoleStreams() {}

bool isConsoleInUtf8(int) noexcept {
  return false;
}

SystemError writeConsole(int, const char*, std::size_t) noexcept {
  return ENOTSUP;
}

SystemError readConsole(char*, std::size_t, std::size_t&) noexcept {
  return ENOTSUP;
}

}  // namespace vel::platform
