// Reads and writes the bytes of files and standard streams.
#include "platform/byte_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/posix/descriptor.h"
#include "platform/posix/native_path.h"
#include "platform/posix/opening.h"
#include "platform/posix/pipes.h"

namespace vel::platform {

namespace {

int openRetrying(int directory, const char* path, int flags) noexcept {
  return retrying([&] { return openat(directory, path, flags | O_RDONLY | O_CLOEXEC | O_NOCTTY); });
}

/// Opens without waiting for the other end of a pipe. Opening a file that somebody holds a lease on, a file
/// server for example, fails with EWOULDBLOCK until the kernel has broken the lease, after up to 45 seconds;
/// so this tries for 50 seconds.
int openWithoutWaiting(int directory, const char* path) noexcept {
  constexpr timespec kPause{0, 50'000'000};
  int descriptor = openRetrying(directory, path, O_NONBLOCK);
  for (int left = 1000; descriptor == -1 && errno == EWOULDBLOCK && left > 0; --left) {
    nanosleep(&kPause, nullptr);
    descriptor = openRetrying(directory, path, O_NONBLOCK);
  }
  return descriptor;
}

}  // namespace

SystemError openForReadingAt(int directory, const char* path, PipeWithoutWriter pipe,
                             Descriptor& file) noexcept {
  const bool waits = pipe == PipeWithoutWriter::Wait;
  file = Descriptor(waits ? openRetrying(directory, path, 0) : openWithoutWaiting(directory, path));
  if (!file.isOpen()) return errno;
  // A pipe without writer opens for reading, but reads as empty: refuse it like a missing file.
  if (!waits && isNamedPipe(file.get()) && !hasWriter(file.get())) return ENXIO;
  // Only the open must not wait; reads from a pipe wait for its writers.
  return waits ? 0 : letWait(file.get());
}

SystemError letWait(int descriptor) noexcept {
  return fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK) == 0 ? 0 : errno;
}

SystemError openForReading(const char* name, PipeWithoutWriter pipe, int& descriptor) noexcept {
  const NativePath path(name);
  if (!path.fits()) return ENAMETOOLONG;
  Descriptor file;
  const SystemError error = openForReadingAt(AT_FDCWD, path.get(), pipe, file);
  if (error == 0) descriptor = file.release();
  return error;
}

SystemError openForSharedReading(const char* name, int& descriptor) noexcept {
  return openForReading(name, PipeWithoutWriter::Refuse, descriptor);
}

void closeDescriptor(int descriptor) noexcept {
  close(descriptor);
}

SystemError readBytes(int descriptor, void* buffer, std::size_t capacity, std::size_t& size) noexcept {
  const ssize_t count = retrying([&] { return read(descriptor, buffer, capacity); });
  if (count < 0) return errno;
  size = static_cast<std::size_t>(count);
  return 0;
}

SystemError writeBytes(int descriptor, const void* data, std::size_t size) noexcept {
  const char* bytes = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = retrying([&] { return write(descriptor, bytes, size); });
    if (count <= 0) return count < 0 ? errno : EIO;
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return 0;
}

std::uint64_t bytesLeft(int descriptor) noexcept {
  struct stat status {};
  // fstat gives no size for pipes and terminals.
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const off_t position = lseek(descriptor, 0, SEEK_CUR);
  return position < 0 || position >= status.st_size ? 0
                                                    : static_cast<std::uint64_t>(status.st_size - position);
}

bool skipBytes(int descriptor, std::uint64_t count) noexcept {
  // lseek accepts positions beyond the end, so the step is limited here.
  const auto step = static_cast<off_t>(std::min(count, bytesLeft(descriptor)));
  return step > 0 && lseek(descriptor, step, SEEK_CUR) != -1;
}

}  // namespace vel::platform
