// Opens the first components of names that are too long for a system call.
#include "platform/posix/place.h"

#include <fcntl.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "platform/linux/open_path.h"

namespace vel::platform {

Place::Place(const char* name) noexcept : directory_(AT_FDCWD), name_(name) {
  std::size_t size = std::strlen(name);
  while (size >= PATH_MAX && enter(size)) size = std::strlen(name_);
}

bool Place::enter(std::size_t size) noexcept {
  char head[PATH_MAX];
  std::size_t length = PATH_MAX - 1;
  while (length > 0 && name_[length - 1] != '/') --length;
  std::memcpy(head, name_, length);
  head[length] = '\0';
  Descriptor next(retrying([&] { return openat(directory_, head, kOpenAsPlace | O_DIRECTORY | O_CLOEXEC); }));
  if (length == 0 || !next.isOpen()) {
    error_ = length == 0 ? ENAMETOOLONG : errno;
    return false;
  }
  opened_ = std::move(next);
  directory_ = opened_.get();
  // With a separator first, the rest would be absolute.
  while (length < size && name_[length] == '/') ++length;
  name_ = length < size ? name_ + length : ".";
  return true;
}

}  // namespace vel::platform
