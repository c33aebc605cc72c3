// Queries and sets the translation mode of the runtime's file descriptors. The runtime cannot query the mode,
// so the mode is set and the previous one, which the call returns, is restored.
#include "platform/descriptors.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;

bool velFileIsOpenedInBinaryMode(int fd) {
  if (platform::setDescriptorMode(fd, platform::DescriptorMode::Binary) == platform::DescriptorMode::Binary)
    return true;
  // Intentional: a descriptor in any other mode, such as a Unicode one, ends up in text mode.
  static_cast<void>(platform::setDescriptorMode(fd, platform::DescriptorMode::Text));
  return false;
}

bool velFileIsOpenedInTextMode(int fd) {
  return !velFileIsOpenedInBinaryMode(fd);
}

bool velFileSetBinaryMode(int fd, bool binary) {
  const auto mode = binary ? platform::DescriptorMode::Binary : platform::DescriptorMode::Text;
  return platform::setDescriptorMode(fd, mode) != platform::DescriptorMode::NotOpen;
}
