// Renaming that never replaces an entry.
#include "platform/posix/rename.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace vel::platform {

namespace {

SystemError renameAfterAsking(const char* from, const char* to) noexcept {
  struct stat status;
  if (lstat(to, &status) == 0) return EEXIST;
  return rename(from, to) == 0 ? 0 : errno;
}

}  // namespace

SystemError renameByLink(const char* from, const char* to) noexcept {
  if (link(from, to) != 0) {
    const bool hasNoLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
    return hasNoLinks ? renameAfterAsking(from, to) : errno;
  }
  if (unlink(from) == 0) return 0;
  const SystemError error = errno;
  unlink(to);
  return error;
}

SystemError renameWithoutReplacing(const char* from, const char* to) noexcept {
  if (syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL) return errno;
  return renameByLink(from, to);
}

}  // namespace vel::platform
