// Making pipes by pipe2(), which POSIX has since 2024, and queries about them with tee() and the magic number
// of the kernel's own file system of pipes.
#include "platform/posix/pipes.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>

namespace vel::platform {

SystemError makePipe(int (&ends)[2], int flags) noexcept {
  return pipe2(ends, O_CLOEXEC | flags) == 0 ? 0 : errno;
}

bool isNamedPipe(int descriptor) noexcept {
  struct stat status {};
  struct statfs system {};
  if (fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode)) return false;
  // Unnamed pipes are in a separate file system (pipefs).
  return fstatfs(descriptor, &system) != 0 || system.f_type != PIPEFS_MAGIC;
}

// tee() copies a byte into another pipe without consuming it. If the pipe is empty, it returns 0 without a
// writer, and fails with EAGAIN if the pipe has a writer.
bool hasWriter(int pipe) noexcept {
  int ends[2];
  if (makePipe(ends, 0) != 0) return false;
  const bool isWritten = tee(pipe, ends[1], 1, SPLICE_F_NONBLOCK) != 0;
  close(ends[0]);
  close(ends[1]);
  return isWritten;
}

}  // namespace vel::platform
