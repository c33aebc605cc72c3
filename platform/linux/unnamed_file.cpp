// Unnamed files by O_TMPFILE. Naming one needs its path in /proc, because linkat with AT_EMPTY_PATH needs a
// capability. Where /proc is not mounted none is created, since it could never get a name.
#include "platform/posix/unnamed_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/open_path.h"
#include "platform/posix/descriptor.h"

namespace vel::platform {

int createUnnamed(int directory, mode_t mode) noexcept {
  Descriptor file(retrying([&] { return openat(directory, ".", O_WRONLY | O_CLOEXEC | O_TMPFILE, mode); }));
  const bool canBeNamed = file.isOpen() && access(OpenPath(file.get()).text, F_OK) == 0;
  return canBeNamed ? file.release() : -1;
}

SystemError nameUnnamed(int descriptor, int directory, const char* name) noexcept {
  const OpenPath own(descriptor);
  return linkat(AT_FDCWD, own.text, directory, name, AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

}  // namespace vel::platform
