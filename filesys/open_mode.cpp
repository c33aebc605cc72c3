// The translation mode of the runtime's file descriptors.
#include "platform/descriptors.h"
#include "vel_include/vel_filesys.h"

namespace platform = vel::platform;

bool velFileIsOpenedInBinaryMode(int fd) {
  if (platform::setDescriptorMode(fd, platform::DescriptorMode::Binary) == platform::DescriptorMode::Binary)
    return true;
  // Text, whatever else the mode was. Keep.
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
