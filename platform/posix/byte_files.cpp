// Bytes of files and standard streams.
#include "platform/byte_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/native_path.h"

namespace vel::platform {

int openForReading(const char* name) noexcept {
  const NativePath path(name);
  if (!path.fits()) return -1;
  int descriptor = -1;
  do descriptor = open(path.get(), O_RDONLY | O_CLOEXEC);
  while (descriptor == -1 && errno == EINTR);
  return descriptor;
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
