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

SystemError renameAfterAsking(int directory, const char* from, const char* to) noexcept {
  struct stat status;
  if (fstatat(directory, to, &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return renameat(directory, from, directory, to) == 0 ? 0 : errno;
}

}  // namespace

SystemError renameByLink(int directory, const char* from, const char* to) noexcept {
  if (linkat(directory, from, directory, to, 0) != 0) {
    const bool hasNoLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK;
    return hasNoLinks ? renameAfterAsking(directory, from, to) : errno;
  }
  if (unlinkat(directory, from, 0) == 0) return 0;
  const SystemError error = errno;
  unlinkat(directory, to, 0);
  return error;
}

SystemError renameWithoutReplacing(int directory, const char* from, const char* to) noexcept {
  if (syscall(SYS_renameat2, directory, from, directory, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL) return errno;
  return renameByLink(directory, from, to);
}

}  // namespace vel::platform
