// The arguments of main are what the system passed, byte by byte.
#include "platform/own_command_line.h"

namespace vel::platform {

std::size_t ownCommandLine(char*, std::size_t) noexcept {
  return 0;
}

bool areArgumentsOfMain(int, const char* const*) noexcept {
  return false;
}

}  // namespace vel::platform
