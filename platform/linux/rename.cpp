// Renaming in one step that never replaces an entry: renameat2, which older kernels and some file systems
// lack.
#include <stdio.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/rename.h"

namespace vel::platform {

SystemError renameWithoutReplacing(int directory, const char* from, const char* to) noexcept {
  if (syscall(SYS_renameat2, directory, from, directory, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != ENOSYS && errno != EINVAL) return errno;
  return renameByLink(directory, from, to);
}

}  // namespace vel::platform
