// Renames atomically without replacing, by renameat2. Older kernels (ENOSYS) and some file systems (EINVAL)
// do not support it.
#include <stdio.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/rename.h"

namespace vel::platform {

SystemError renameWithoutReplacing(int fromDirectory, const char* from, int toDirectory,
                                   const char* to) noexcept {
  if (syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL) return errno;
  return renameByLink(fromDirectory, from, toDirectory, to);
}

}  // namespace vel::platform
