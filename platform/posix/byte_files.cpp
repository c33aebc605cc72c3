// Bytes of files and standard streams.
#include "platform/byte_files.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/native_path.h"

namespace vel::platform {

namespace {

int openRetrying(const char* path, int flags) noexcept {
  int descriptor = -1;
  do descriptor = open(path, flags | O_RDONLY | O_CLOEXEC | O_NOCTTY);
  while (descriptor == -1 && errno == EINTR);
  return descriptor;
}

/// A file that is lent out, to a server of files for example, is taken back first, which takes up to 45
/// seconds.
int openAtOnce(const char* path) noexcept {
  constexpr timespec kPause{0, 50'000'000};
  int descriptor = openRetrying(path, O_NONBLOCK);
  for (int left = 1000; descriptor == -1 && errno == EWOULDBLOCK && left > 0; --left) {
    nanosleep(&kPause, nullptr);
    descriptor = openRetrying(path, O_NONBLOCK);
  }
  return descriptor;
}

/// Pipes that have no name, and are opened through the descriptors' directory, may have lost their writer.
bool isNamedPipe(int descriptor) noexcept {
  struct stat status {};
  struct statfs system {};
  if (fstat(descriptor, &status) != 0 || !S_ISFIFO(status.st_mode)) return false;
  return fstatfs(descriptor, &system) != 0 || system.f_type != PIPEFS_MAGIC;
}

/// Copies a byte from pipe to pipe, which says at once that nobody will write one, and leaves it to be read.
bool hasWriter(int pipe) noexcept {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return false;
  const bool isWritten = tee(pipe, ends[1], 1, SPLICE_F_NONBLOCK) != 0;
  close(ends[0]);
  close(ends[1]);
  return isWritten;
}

}  // namespace

int openForReading(const char* name, PipeWithoutWriter pipe) noexcept {
  const NativePath path(name);
  if (!path.fits()) return -1;
  if (pipe == PipeWithoutWriter::Await) return openRetrying(path.get(), 0);
  const int descriptor = openAtOnce(path.get());
  if (descriptor == -1) return -1;
  const bool isUseful = !isNamedPipe(descriptor) || hasWriter(descriptor);
  if (isUseful && fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK) == 0)
    return descriptor;
  close(descriptor);
  return -1;
}

void closeDescriptor(int descriptor) noexcept {
  close(descriptor);
}

std::int64_t readBytes(int descriptor, void* buffer, std::size_t capacity) noexcept {
  ssize_t count = 0;
  do count = read(descriptor, buffer, capacity);
  while (count == -1 && errno == EINTR);
  return count;
}

bool writeBytes(int descriptor, const void* data, std::size_t size) noexcept {
  const char* bytes = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = write(descriptor, bytes, size);
    if (count == -1 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

std::uint64_t bytesLeft(int descriptor) noexcept {
  struct stat status {};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const off_t position = lseek(descriptor, 0, SEEK_CUR);
  return position < 0 || position >= status.st_size ? 0
                                                    : static_cast<std::uint64_t>(status.st_size - position);
}

bool skipBytes(int descriptor, std::uint64_t count) noexcept {
  const auto step = static_cast<off_t>(std::min(count, bytesLeft(descriptor)));
  return step > 0 && lseek(descriptor, step, SEEK_CUR) != -1;
}

}  // namespace vel::platform
