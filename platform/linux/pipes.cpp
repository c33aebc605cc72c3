#include "platform/posix/pipes.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace vel::platform {

bool isNamedPipe(int descriptor) noexcept {
  struct stat status {};
  struct statfs system {};
  if (fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode)) return false;
  // Pipes without a name are in a file system of their own.
  return fstatfs(descriptor, &system) != 0 || system.f_type != PIPEFS_MAGIC;
}

// tee() copies a byte into another pipe and leaves it where it is; without a writer it returns 0 at once.
bool hasWriter(int pipe) noexcept {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  const bool isWritten = tee(pipe, ends[1], 1, SPLICE_F_NONBLOCK) != 0;
  close(ends[0]);
  close(ends[1]);
  return isWritten;
}

}  // namespace vel::platform
