// Translation modes of descriptors: POSIX systems do not translate line breaks, so every open descriptor is
// in binary mode.
#include <fcntl.h>
#include <unistd.h>

#include "platform/descriptors.h"

namespace vel::platform {

DescriptorMode setDescriptorMode(int descriptor, DescriptorMode) noexcept {
  return fcntl(descriptor, F_GETFD) == -1 ? DescriptorMode::NotOpen : DescriptorMode::Binary;
}

bool isTerminal(int descriptor) noexcept {
  return isatty(descriptor) == 1;
}

bool enableTerminalSequences(int descriptor) noexcept {
  return isTerminal(descriptor);
}

}  // namespace vel::platform
