// Renames without replacing by hard links, on file systems that do not support an atomic rename of that kind.
// Unlike rename(), link() fails with EEXIST if the target exists.
#include "platform/posix/rename.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vel::platform {

namespace {

/// Not atomic: an entry that appears between the two calls is replaced.
SystemError renameAfterCheck(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept {
  struct stat status;
  if (fstatat(toDirectory, to, &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return renameat(fromDirectory, from, toDirectory, to) == 0 ? 0 : errno;
}

}  // namespace

SystemError renameByLink(int fromDirectory, const char* from, int toDirectory, const char* to) noexcept {
  if (linkat(fromDirectory, from, toDirectory, to, 0) != 0) {
    const bool hasNoLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
    return hasNoLinks ? renameAfterCheck(fromDirectory, from, toDirectory, to) : errno;
  }
  if (unlinkat(fromDirectory, from, 0) == 0) return 0;
  const SystemError error = errno;
  // The old name could not be removed, and the file must not keep two.
  unlinkat(toDirectory, to, 0);
  return error;
}

}  // namespace vel::platform
